#include <gtest/gtest.h>

#include <sstream>

#include "common/text_tools.h"

namespace tesseramill {
namespace {

bool comment(std::string& text) { return is_comment_line(text); }

TEST(IsCommentLine, LineOfTabsIsNotBlank) {
  std::string text = "\t\t";
  EXPECT_FALSE(comment(text));
  EXPECT_EQ(text, "\t\t");
}

TEST(IsCommentLine, HashAndDoublePlusMarksSkipTheLine) {
  std::string a = "# comment";
  std::string b = "#comment";
  std::string c = "++ comment";
  std::string d = "   # indented comment";
  EXPECT_TRUE(comment(a));
  EXPECT_TRUE(comment(b));
  EXPECT_TRUE(comment(c));
  EXPECT_TRUE(comment(d));
}

TEST(IsCommentLine, SinglePlusIsNoComment) {
  std::string text = "+ comment";
  EXPECT_FALSE(comment(text));
  EXPECT_EQ(text, "+ comment");
}

TEST(IsCommentLine, BlankLineIsSkipped) {
  std::string empty;
  std::string blanks = "     ";
  EXPECT_TRUE(comment(empty));
  EXPECT_TRUE(comment(blanks));
}

TEST(IsCommentLine, TrailingCommentIsBlankedOut) {
  std::string text = "x #";
  EXPECT_FALSE(comment(text));
  EXPECT_EQ(text, "x");
}

TEST(IsCommentLine, HashGluedToAWordStays) {
  std::string text = "abc#def";
  EXPECT_FALSE(comment(text));
  EXPECT_EQ(text, "abc#def");
}

TEST(IsCommentLine, HashAfterBlankOrTabEndsTheLine) {
  std::string a = "abc #def";
  std::string b = "abc\t#def";
  EXPECT_FALSE(comment(a));
  EXPECT_FALSE(comment(b));
  EXPECT_EQ(a, "abc");
  EXPECT_EQ(b, "abc\t");
}

TEST(IsCommentLine, HashInsideQuotesStays) {
  std::string a = "\"abc #def\"";
  std::string b = "'abc #def' x";
  EXPECT_FALSE(comment(a));
  EXPECT_FALSE(comment(b));
  EXPECT_EQ(a, "\"abc #def\"");
  EXPECT_EQ(b, "'abc #def' x");
}

TEST(IsCommentLine, EachQuoteKindFlipsItsOwnSwitch) {
  // The single quote inside double quotes flips its own switch, so after the
  // closing double quote the single-quote switch is still on.
  std::string text = "\"it's\" #x";
  EXPECT_FALSE(comment(text));
  EXPECT_EQ(text, "\"it's\" #x");
}

TEST(IsCommentLine, LeftAdjustsTheLine) {
  std::string text = "   NLAY 3";
  EXPECT_FALSE(comment(text));
  EXPECT_EQ(text, "NLAY 3");
}

struct Tokens {
  int code;
  std::vector<std::string> tokens;
  std::string text_after;
};

Tokens split(std::string text, int count) {
  int first[8];
  int last[8];
  Tokens t;
  t.code = split_line(count, text, first, last);
  if (t.code == 0) {
    for (int k = 0; k < count; ++k) t.tokens.push_back(text.substr(first[k], last[k] - first[k] + 1));
  }
  t.text_after = text;
  return t;
}

TEST(SplitLine, TooFewTokensGivesOne) { EXPECT_EQ(split("a b", 3).code, 1); }

TEST(SplitLine, BlankTextGivesMinusOne) {
  EXPECT_EQ(split("", 2).code, -1);
  EXPECT_EQ(split("    ", 2).code, -1);
}

TEST(SplitLine, RunsOfCommasAreOneSeparation) {
  Tokens t = split("1,2,,3", 3);
  ASSERT_EQ(t.code, 0);
  EXPECT_EQ(t.tokens, (std::vector<std::string>{"1", "2", "3"}));
}

TEST(SplitLine, LeadingCommaIsSkipped) {
  Tokens t = split(",a b", 2);
  ASSERT_EQ(t.code, 0);
  EXPECT_EQ(t.tokens, (std::vector<std::string>{"a", "b"}));
}

TEST(SplitLine, TabsBecomeBlanksInTheCallersText) {
  Tokens t = split("a\tb\tc", 2);
  ASSERT_EQ(t.code, 0);
  EXPECT_EQ(t.tokens, (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(t.text_after, "a b c");
}

TEST(SplitLine, CountZeroSucceedsOnTextThatIsNotBlank) {
  EXPECT_EQ(split("abc", 0).code, 0);
  EXPECT_EQ(split(" ", 0).code, -1);
}

TEST(SplitLine, QuotesHaveNoMeaning) {
  Tokens t = split("\"a b\"", 2);
  ASSERT_EQ(t.code, 0);
  EXPECT_EQ(t.tokens, (std::vector<std::string>{"\"a", "b\""}));
}

TEST(SplitLine, TokensBehindTheWantedOnesAreNotLookedAt) {
  Tokens t = split("1 2 3 4", 2);
  ASSERT_EQ(t.code, 0);
  EXPECT_EQ(t.tokens, (std::vector<std::string>{"1", "2"}));
}

struct Name {
  int code;
  std::string name;
  int last;
};

Name file_name(const std::string& text) {
  Name n{0, "", static_cast<int>(text.size()) - 1};
  n.code = read_file_name(text, 0, n.last, n.name, 256);
  return n;
}

TEST(ReadFileName, QuotedNameMayHoldBlanks) {
  Name n = file_name("\"a b.bln\" x");
  ASSERT_EQ(n.code, 0);
  EXPECT_EQ(n.name, "a b.bln");
  EXPECT_EQ(n.last, 8);
}

TEST(ReadFileName, QuotedNameIsLeftAdjusted) {
  Name n = file_name("\"  pts a.bln\"");
  ASSERT_EQ(n.code, 0);
  EXPECT_EQ(n.name, "pts a.bln");
  EXPECT_EQ(n.last, 12);
}

TEST(ReadFileName, QuotedBlanksAreABlankName) {
  Name n = file_name("\"   \"");
  ASSERT_EQ(n.code, 0);
  EXPECT_EQ(n.name, "");
}

TEST(ReadFileName, UnquotedNameEndsAtBlank) {
  Name n = file_name("a b.bln");
  ASSERT_EQ(n.code, 0);
  EXPECT_EQ(n.name, "a");
  EXPECT_EQ(n.last, 0);
}

TEST(ReadFileName, EmptyQuotesFail) { EXPECT_EQ(file_name("\"\"").code, 1); }

TEST(ReadFileName, UnclosedQuoteFails) { EXPECT_EQ(file_name("\"abc").code, 1); }

TEST(ReadFileName, QuoteNeverOpenedFails) { EXPECT_EQ(file_name("abc\"").code, 1); }

TEST(ReadFileName, LoneQuoteFails) { EXPECT_EQ(file_name("\"").code, 1); }

TEST(ReadFileName, SingleQuotesWorkLikeDouble) {
  Name n = file_name("'my file.bln'");
  ASSERT_EQ(n.code, 0);
  EXPECT_EQ(n.name, "my file.bln");
}

TEST(ReadFileName, LeadingDelimitersAreSkipped) {
  Name n = file_name(" ,\tname.bln,rest");
  ASSERT_EQ(n.code, 0);
  EXPECT_EQ(n.name, "name.bln");
}

TEST(ReadFileName, NothingInTheStretchFails) {
  EXPECT_EQ(file_name("  , ").code, 1);
  std::string name;
  int last = -1;
  EXPECT_EQ(read_file_name("abc", 0, last, name, 256), 1);
}

TEST(ReadFileName, NameIsCutAtTheFieldLength) {
  Name n{0, "", 0};
  std::string text(300, 'a');
  n.last = 299;
  n.code = read_file_name(text, 0, n.last, n.name, 256);
  ASSERT_EQ(n.code, 0);
  EXPECT_EQ(n.name, std::string(256, 'a'));
}

double real(const std::string& token) {
  double v = -777.0;
  EXPECT_EQ(read_real(token, v), 0) << token;
  return v;
}

TEST(ReadReal, AcceptsTheWrittenForms) {
  EXPECT_EQ(real("12"), 12.0);
  EXPECT_EQ(real("-12."), -12.0);
  EXPECT_EQ(real(".5"), 0.5);
  EXPECT_EQ(real("1.5E3"), 1500.0);
  EXPECT_EQ(real("1.5d-3"), 0.0015);
  EXPECT_EQ(real("1.5+3"), 1500.0);
  EXPECT_EQ(real("1.5q2"), 150.0);
  EXPECT_EQ(real("1.5D+2"), 150.0);
  EXPECT_EQ(real("+2.25"), 2.25);
  EXPECT_EQ(real("2.5e-1   "), 0.25);
}

TEST(ReadReal, NumberWithoutPointHasNoImpliedDecimals) { EXPECT_EQ(real("125"), 125.0); }

TEST(ReadReal, IsCorrectlyRounded) {
  EXPECT_EQ(real("0.1"), 0.1);
  EXPECT_EQ(real("0.20000000298023224"), 0.20000000298023224);
}

TEST(ReadReal, RefusesOtherText) {
  double v = 0.0;
  for (const char* bad : {"", "abc", "1.2.3", "1e", "1e+", "+", ".", "1,5", "1.5x", "E3", "1 5",
                          "--1", "1.5e3.0", "0x10", "inf", "nan"}) {
    EXPECT_EQ(read_real(bad, v), 1) << bad;
  }
}

TEST(ReadInteger, AcceptsSignedDigits) {
  std::int32_t v = 0;
  ASSERT_EQ(read_integer("42", v), 0);
  EXPECT_EQ(v, 42);
  ASSERT_EQ(read_integer("-7", v), 0);
  EXPECT_EQ(v, -7);
  ASSERT_EQ(read_integer("+3   ", v), 0);
  EXPECT_EQ(v, 3);
  ASSERT_EQ(read_integer("2147483647", v), 0);
  EXPECT_EQ(v, 2147483647);
  ASSERT_EQ(read_integer("-2147483648", v), 0);
  EXPECT_EQ(v, -2147483647 - 1);
}

TEST(ReadInteger, RefusesRealsAndOverflow) {
  std::int32_t v = 0;
  for (const char* bad : {"1.0", "1E3", "", "-", "2147483648", "-2147483649", "99999999999999",
                          "12a", " "}) {
    EXPECT_EQ(read_integer(bad, v), 1) << bad;
  }
}

TEST(IntToText, WritesPlainDigits) {
  EXPECT_EQ(int_to_text(0), "0");
  EXPECT_EQ(int_to_text(1234), "1234");
  EXPECT_EQ(int_to_text(-56), "-56");
}

TEST(ToLower, ChangesAsciiLettersOnly) {
  std::string text = "MAX_Cells=1001 \xC3\x84";
  to_lower(text);
  EXPECT_EQ(text, "max_cells=1001 \xC3\x84");
}

TEST(BlankOutChar, ReplacesEveryOccurrence) {
  std::string text = "NLAY=3==4";
  blank_out_char(text, '=');
  EXPECT_EQ(text, "NLAY 3  4");
}

std::string printed(const std::string& text) {
  std::ostringstream screen;
  print_message(screen, text);
  return screen.str();
}

TEST(PrintMessage, BlankTextPrintsOneEmptyLine) {
  EXPECT_EQ(printed(""), "\n");
  EXPECT_EQ(printed("   "), "\n");
}

TEST(PrintMessage, SeventyEightCharactersFitOneLine) {
  std::string text(78, 'x');
  EXPECT_EQ(printed(text), "\n" + text + "\n");
}

TEST(PrintMessage, SeventyNineCharactersLookForABreak) {
  std::string text = std::string(70, 'a') + " " + std::string(8, 'b');
  ASSERT_EQ(text.size(), 79u);
  EXPECT_EQ(printed(text), "\n" + std::string(70, 'a') + " \n  " + std::string(8, 'b') + "\n");
}

TEST(PrintMessage, LongWordIsBrokenAtTheLimit) {
  std::string text = std::string(80, 'w');
  EXPECT_EQ(printed(text), "\n" + std::string(78, 'w') + "\n  ww\n");
}

TEST(PrintMessage, FailureTextIndentsContinuationsByThree) {
  std::string text =
      " Values must be supplied for BOTH of XORIGIN and YORIGIN in CONTROL block of file t.in or "
      "for NEITHER of these variables.";
  EXPECT_EQ(printed(text),
            "\n Values must be supplied for BOTH of XORIGIN and YORIGIN in CONTROL block of \n"
            "   file t.in or for NEITHER of these variables.\n");
}

TEST(PrintMessage, LaterLinesHoldAtMostSeventyEightColumnsWithTheirIndent) {
  std::string text = " ";
  for (int k = 0; k < 60; ++k) text += "word" + std::to_string(k % 10) + " ";
  std::string out = printed(text);
  std::istringstream lines(out);
  std::string line;
  int count = 0;
  std::string joined;
  while (std::getline(lines, line)) {
    EXPECT_LE(line.size(), 78u) << line;
    if (count >= 2) {
      EXPECT_EQ(line.substr(0, 3), "   ");
    }
    if (count >= 1) joined += line.substr(count == 1 ? 0 : 3);
    ++count;
  }
  EXPECT_GT(count, 4);
  EXPECT_EQ(joined, trimmed(text));
}

TEST(PrintMessage, LeadIsCountedInTheFirstTwentyColumnsOnly) {
  // 25 leading blanks: lead is 21, so continuation lines are indented by 22.
  // The first break is the last leading blank, so the first line is blanks.
  std::string text = std::string(25, ' ') + std::string(60, 'a') + " " + std::string(10, 'b');
  EXPECT_EQ(printed(text), "\n" + std::string(25, ' ') + "\n" + std::string(22, ' ') +
                               std::string(56, 'a') + "\n" + std::string(22, ' ') +
                               std::string(4, 'a') + " " + std::string(10, 'b') + "\n");
}

}  // namespace
}  // namespace tesseramill
