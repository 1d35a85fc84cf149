// SHA-256 of a text, as 64 lowercase hex digits: recorded outputs of long
// runs are kept in the tests as their digests.
#pragma once

#include <string>

namespace tesseramill_test {

std::string sha256(const std::string& data);

}  // namespace tesseramill_test
