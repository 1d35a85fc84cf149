#include "support/xml_check.h"

#include <cctype>
#include <set>
#include <vector>

namespace tesseramill_test {

namespace {

bool name_char(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '-' || c == ':' || c == '.'; }

// Checks the character data from `begin` to `end` for bare < and for & that
// starts no entity.
bool valid_text(const std::string& text, std::size_t begin, std::size_t end) {
  for (std::size_t p = begin; p < end; ++p) {
    if (text[p] == '<') return false;
    if (text[p] != '&') continue;
    const std::size_t semicolon = text.find(';', p);
    if (semicolon == std::string::npos || semicolon > end) return false;
    const std::string entity = text.substr(p + 1, semicolon - p - 1);
    static const std::set<std::string> known = {"amp", "lt", "gt", "quot", "apos"};
    if (!known.count(entity) && !(entity.size() > 1 && entity[0] == '#')) return false;
  }
  return true;
}

}  // namespace

bool well_formed_xml(const std::string& text, std::string& error) {
  std::vector<std::string> open;
  bool root_seen = false;
  std::size_t p = 0;
  auto fail = [&](const std::string& what) {
    error = what + " at offset " + std::to_string(p);
    return false;
  };
  while (p < text.size()) {
    const std::size_t lt = text.find('<', p);
    const std::size_t text_end = lt == std::string::npos ? text.size() : lt;
    if (open.empty()) {
      for (std::size_t q = p; q < text_end; ++q) {
        if (!std::isspace(static_cast<unsigned char>(text[q]))) return fail("text outside the root element");
      }
    } else if (!valid_text(text, p, text_end)) {
      return fail("bad character data");
    }
    if (lt == std::string::npos) break;
    p = lt;
    if (text.compare(p, 5, "<?xml") == 0) {
      if (p != 0) return fail("declaration not at the start");
      const std::size_t end = text.find("?>", p);
      if (end == std::string::npos) return fail("unclosed declaration");
      p = end + 2;
      continue;
    }
    if (text.compare(p, 4, "<!--") == 0) {
      const std::size_t end = text.find("-->", p);
      if (end == std::string::npos) return fail("unclosed comment");
      p = end + 3;
      continue;
    }
    const bool closing = text.compare(p, 2, "</") == 0;
    std::size_t q = p + (closing ? 2 : 1);
    const std::size_t name_start = q;
    while (q < text.size() && name_char(text[q])) ++q;
    const std::string name = text.substr(name_start, q - name_start);
    if (name.empty()) return fail("element without a name");
    if (closing) {
      while (q < text.size() && std::isspace(static_cast<unsigned char>(text[q]))) ++q;
      if (q >= text.size() || text[q] != '>') return fail("bad closing tag");
      if (open.empty() || open.back() != name) return fail("closing tag " + name + " does not match");
      open.pop_back();
      p = q + 1;
      continue;
    }
    if (open.empty() && root_seen) return fail("a second root element");
    std::set<std::string> attributes;
    for (;;) {
      const std::size_t before = q;
      while (q < text.size() && std::isspace(static_cast<unsigned char>(text[q]))) ++q;
      if (q >= text.size()) return fail("unclosed tag");
      if (text[q] == '>' || text.compare(q, 2, "/>") == 0) break;
      if (q == before) return fail("attributes not separated");
      const std::size_t a = q;
      while (q < text.size() && name_char(text[q])) ++q;
      const std::string attribute = text.substr(a, q - a);
      if (attribute.empty() || q >= text.size() || text[q] != '=') return fail("bad attribute");
      if (!attributes.insert(attribute).second) return fail("repeated attribute " + attribute);
      ++q;
      if (q >= text.size() || (text[q] != '"' && text[q] != '\'')) return fail("unquoted attribute");
      const std::size_t close = text.find(text[q], q + 1);
      if (close == std::string::npos || !valid_text(text, q + 1, close)) return fail("bad attribute value");
      q = close + 1;
    }
    root_seen = true;
    if (text[q] == '>') {
      open.push_back(name);
      p = q + 1;
    } else {
      p = q + 2;
    }
  }
  if (!open.empty()) return fail("element " + open.back() + " not closed");
  if (!root_seen) return fail("no root element");
  return true;
}

}  // namespace tesseramill_test
