// Small tools with which the input side looks at text, and the one tool that
// puts wrapped messages on the screen.
//
// Texts are held as std::string without trailing blanks: the end of a text is
// its last character that is not a blank, and a blank text is empty.  Only the
// blank (' ') counts as a blank; a tab is a character like any other except
// where a tool says otherwise.  Positions handed in and out are 0-based.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>

namespace tesseramill {

// Removes trailing blanks in place.
void trim_right(std::string& text);
std::string trimmed(std::string_view text);

// Removes leading blanks in place (blanks only, not tabs).
void left_adjust(std::string& text);

// Cuts a text to a field of `width` characters and drops trailing blanks.
std::string fit_field(std::string_view text, std::size_t width);

// Decides whether a control-file line is to be skipped; left-adjusts the line
// and blanks a trailing comment in place.
bool is_comment_line(std::string& text);

// Finds the first `count` tokens separated by runs of blanks and commas.
// Tabs in `text` become blanks.  Returns 0 on success, 1 when fewer tokens
// are present, -1 when the text is blank.  first[k] and last[k] are the
// inclusive positions of token k.
int split_line(int count, std::string& text, int* first, int* last);

// Reads a file name from text[first..last]; a name in quotes may hold blanks.
// `last` becomes the position where the name ends.  Returns 0 or 1.
int read_file_name(std::string_view text, int first, int& last, std::string& name,
                   std::size_t field_length);

// Reads a whole token as one real number (exponent letters E, D or Q).
int read_real(std::string_view token, double& value);

// Reads a whole token as an optionally signed 32-bit decimal integer.
int read_integer(std::string_view token, std::int32_t& value);

std::string int_to_text(std::int32_t value);

void to_lower(std::string& text);

void blank_out_char(std::string& text, char c);

// Writes an empty line, then the text wrapped at 78 columns with continuation
// lines indented one column past the text's own first non-blank column.
void print_message(std::ostream& screen, std::string_view text);

}  // namespace tesseramill
