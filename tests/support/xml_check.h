// A strict check that a text is well-formed XML, for the report's picture.
#pragma once

#include <string>

namespace tesseramill_test {

// True when `text` is one well-formed XML document: an optional
// declaration, comments, and one root element in which every element is
// closed in order, every attribute is quoted and unique, and every & starts
// a known entity.  Otherwise false, with `error` saying where it broke.
bool well_formed_xml(const std::string& text, std::string& error);

}  // namespace tesseramill_test
