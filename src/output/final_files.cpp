// Map files and tables written once the Lloyd loop has ended.
#include "run/phases.h"

namespace tesseramill {

void write_final_files(RunState&) {}

}  // namespace tesseramill
