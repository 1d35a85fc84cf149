// The command line of tesseramill-gis: its usage, and each wrong argument
// with its exact message.
#include <gtest/gtest.h>

#include "gis/layer_fixtures.h"
#include "support/scratch.h"

namespace tesseramill_test {
namespace {

struct ArgumentCase {
  std::string name;
  std::vector<std::string> args;
  std::string message;
};

std::vector<ArgumentCase> argument_cases() {
  const std::vector<std::string> base{"import", "out", "--boundary", "b.gpkg"};
  auto with = [&](std::vector<std::string> more) {
    std::vector<std::string> args = base;
    args.insert(args.end(), more.begin(), more.end());
    return args;
  };
  return {
      {"UnknownCommand", {"convert"}, "Command convert is not known: tesseramill-gis takes import or export."},
      {"UnknownOption", with({"--max-spacing", "100", "--spacing"}),
       "Option --spacing is not known. Run tesseramill-gis without arguments to see the options."},
      {"OptionWithoutValue", with({"--max-spacing"}), "Option --max-spacing needs a value after it."},
      {"NoMaxSpacing", base, "The import needs the largest cell spacing of the model: --max-spacing S."},
      {"NoBoundary", {"import", "out", "--max-spacing", "100"},
       "The import needs the outer boundary of the model: --boundary SRC."},
      {"NoFolder", {"import", "--boundary", "b.gpkg", "--max-spacing", "100"},
       "The import needs the folder to write the model into, before the options."},
      {"TwoFolders", with({"other", "--max-spacing", "100"}),
       "The import writes one folder, but \"out\" and \"other\" were both given. Name the folder once, before the "
       "options."},
      {"SpacingNotPositive", with({"--max-spacing", "0"}),
       "Option --max-spacing takes a number greater than zero, not \"0\"."},
      {"GrowthNotAboveOne", with({"--max-spacing", "100", "--growth", "1"}),
       "Option --growth takes a number greater than one, not \"1\"."},
      {"MaxCellsTooFew", with({"--max-spacing", "100", "--max-cells", "1000"}),
       "Option --max-cells takes a whole number from 1001 to 2147483647, not \"1000\"."},
      {"TooManyLayers", with({"--max-spacing", "100", "--nlay", "101"}),
       "Option --nlay takes a whole number from 1 to 100, not \"101\"."},
      {"NameWithPath", with({"--max-spacing", "100", "--name", "a/b"}),
       "Option --name takes a plain name without a path or blanks, not \"a/b\"."},
      {"OriginWithoutComma", with({"--max-spacing", "100", "--origin", "500000"}),
       "Option --origin takes the corner as X,Y, such as 500000,4100000, not \"500000\"."},
      {"SystemNotEpsg", with({"--max-spacing", "100", "--to", "UTM33"}),
       "Option --to takes a coordinate system as EPSG:n, such as EPSG:32633, not \"UTM33\"."},
      {"UnknownSystem", with({"--max-spacing", "100", "--to", "EPSG:999999"}),
       "The coordinate system EPSG:999999 is not known to PROJ."},
      {"NegativeClean", with({"--max-spacing", "100", "--clean", "-1"}),
       "Option --clean takes a number of zero or more, not \"-1\"."},
      {"ExportWithoutFile", {"export"},
       "The export takes one argument, the input file of a finished run: tesseramill-gis export infile"},
  };
}

class GisArguments : public ::testing::TestWithParam<ArgumentCase> {};

TEST_P(GisArguments, AreRefusedWithTheirMessage) {
  ScratchDir dir;
  std::vector<std::string> args = GetParam().args;
  const GisRun run = run_gis(args);
  EXPECT_EQ(run.status, 1);
  const std::string expected = failure_text(GetParam().message);
  ASSERT_GE(run.screen.size(), expected.size()) << run.screen;
  EXPECT_EQ(run.screen.substr(run.screen.size() - expected.size()), expected) << run.screen;
}

INSTANTIATE_TEST_SUITE_P(CommandLine, GisArguments, ::testing::ValuesIn(argument_cases()),
                         [](const ::testing::TestParamInfo<ArgumentCase>& info) { return info.param.name; });

TEST(GisCommandLine, WithoutArgumentsItPrintsItsUsage) {
  const GisRun run = run_gis({});
  EXPECT_EQ(run.status, 0);
  EXPECT_NE(run.screen.find("\n TESSERAMILL-GIS is run using the commands:\n\n"
                            "   tesseramill-gis import OUTDIR --boundary SRC [--holes SRC] [--lines SRC]\n"),
            std::string::npos)
      << run.screen;
  EXPECT_NE(run.screen.find("   tesseramill-gis export infile\n"), std::string::npos);
}

}  // namespace
}  // namespace tesseramill_test
