// What the operating system does differently on Linux and on Windows, behind
// one face: opening files by a UTF-8 name, the command line in UTF-8,
// starting a child program and collecting its screen, the program's own
// path, fresh temporary folders, the null device, file permissions,
// letting the system's cache go of the output files' written pages and
// keeping freed memory for reuse.
// Everything else in the system is plain portable C++.
#pragma once

#include <cstdint>

#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace tesseramill {

// Opens the file of a UTF-8 `name` with an fopen `mode`.  On Windows the
// name goes to the wide-character call, so that any name Windows can hold
// is reached whatever the system's code page; on Linux names are bytes and
// go as they stand.  Gives nullptr when the file cannot be opened.
std::FILE* open_file(const std::string& name, const char* mode);

// Opens `name` for writing as open_file(name, "wb") does: afterwards the
// file of that name holds none of its old bytes.  On Linux a regular file
// of kOverwriteFromBytes or more keeps its place on disc: its bytes are
// turned to zeros where they stand and the new ones are written over them,
// and `cut_at_close` is set: the caller then cuts the file at the length
// it wrote with cut_file_at before closing it.  Where the file system
// cannot make the zeros, the file is emptied in place and `cut_at_close`
// is still set (the cut then frees nothing).  Elsewhere, and for any other
// file, fopen opens it as open_file does and `cut_at_close` is left false.
// Gives nullptr when the file cannot be opened for writing, as open_file
// does.
std::FILE* open_file_replacing(const std::string& name, bool& cut_at_close);

// Ends `file`, opened by open_file_replacing with `cut_at_close` set, at
// `length` bytes, after writing out what its stream holds; false when
// either fails.
bool cut_file_at(std::FILE* file, std::uint64_t length);

// The size from which open_file_replacing writes over a file where it
// stands (16 MB); a test may lower it.
inline std::int64_t overwrite_from_bytes_for_tests = 0;

// How much of an output file has been handed to it, and how much of that
// the system has been asked to write out and then to drop from its cache
// (release_written).
struct WrittenSpan {
  std::uint64_t given = 0;
  std::uint64_t sent = 0;
  std::uint64_t dropped = 0;
};

// The bytes gathered between two requests of release_written.
inline constexpr std::uint64_t kReleaseStep = std::uint64_t{8} << 20;

// Counts `bytes` more handed to `file`, an output file written front to
// back that the run does not read again.  On Linux, each time a step of
// kReleaseStep bytes has gathered since the last request, it flushes the
// stream, asks the system to start writing the gathered bytes out, and to
// drop from its cache the bytes it was asked to write at the request
// before.  Elsewhere it only counts.  False when the flush did not take
// every byte (a full disc).
bool release_written(std::FILE* file, std::size_t bytes, WrittenSpan& span);

// The command-line words in UTF-8.  On Windows they are taken from the wide
// command line, since argv holds them in the system's code page, where
// letters outside it are lost; on Linux they are argv's bytes.
struct CommandLine {
  std::vector<std::string> words;
  // argv's table over `words`, ended by nullptr.
  std::vector<const char*> argv;
  int argc() const { return static_cast<int>(words.size()); }

  // A copy's table would point into the original's words; a move keeps the
  // words where they are.
  CommandLine() = default;
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;
  CommandLine(CommandLine&&) = default;
  CommandLine& operator=(CommandLine&&) = default;
};
CommandLine utf8_command_line(int argc, const char* const* argv);

// A path from its UTF-8 text, and the UTF-8 text of a path.
std::filesystem::path path_from_utf8(const std::string& text);
std::string path_to_utf8(const std::filesystem::path& path);

// Which of the child's streams are collected.
enum class ChildStreams {
  kOutput,           // standard output; standard error goes where ours goes
  kOutputAndErrors,  // both, interleaved as the child writes them
};

// What a finished child left behind.
struct ChildRun {
  // The exit status; 127 when the program could not be started (as the
  // shells have it), -1 when it did not end by exiting.
  int status = -1;
  // The collected streams, byte for byte as written (Windows ends the lines
  // of a text-mode standard output in CR LF).
  std::string output;
  // The most memory the child held at once, in KiB: its peak resident set
  // on Linux, its peak working set on Windows.
  long peak_kib = 0;
  // The processor time the child's threads spent in its own code and in the
  // system on its behalf, in seconds, summed over the threads; on Linux
  // only, 0 on Windows (where Wine gives other times than the child's).
  double user_seconds = 0.0;
  double system_seconds = 0.0;
  // The signal that ended the child on Linux, 0 when it exited.  (Windows
  // gives a crash as an exit status, such as 0xC0000005 for an access
  // violation.)
  int signal = 0;
  // Whether the child was still running at the time limit and was ended.
  bool timed_out = false;
};

// Starts `program` (a path) with `args` in `folder`, standard input from the
// null device, waits for it to end and gives its status, streams, peak
// memory and processor times.  With a time limit above 0 a child still
// running after that many seconds is killed, and the run says so.
ChildRun run_child(const std::filesystem::path& folder, const std::string& program,
                   const std::vector<std::string>& args, ChildStreams streams = ChildStreams::kOutputAndErrors,
                   double time_limit_seconds = 0.0);

// A path that starts this very program again.  On Linux it is
// /proc/self/exe, which still names the running binary when a rebuild has
// replaced the file on disk meanwhile.
std::string own_program_path();

// The program of that name found along PATH (on Windows also with ".exe").
std::optional<std::filesystem::path> find_on_path(const std::string& name);

// A new, empty folder under the system's temporary folder whose name starts
// with `prefix`; no other caller, in this process or another, gets it.
std::filesystem::path fresh_temporary_folder(const std::string& prefix);

// The device that swallows what is written to it.
const char* null_device();

// This process's number, as the system gives it.
std::int64_t process_id();

// Removes a variable from this process's environment, and so from the
// environment of the children it starts afterwards.
void clear_environment_variable(const char* name);

// Makes a folder refuse new files: on Linux by its permission bits, on
// Windows by an access rule that denies everyone adding files or folders to
// it.  Gives whether the system took the change.  An administrator or root
// may still be let through, and Wine does not apply Windows access rules.
bool make_folder_read_only(const std::filesystem::path& folder);

// Asks the C library to keep the memory the program frees for its next
// allocations instead of handing it back to the system.  With GNU's C
// library, blocks from 128 KiB up (and up to 32 MiB as freed blocks raise
// that bound) are otherwise mapped afresh for each allocation and unmapped
// when freed, and the top of the heap is given back; each allocation of a
// large table is then touched page by page anew, every first touch a fault
// for the system to serve: a million cells with 3 Lloyd passes made some
// 200,000 first touches, against 137,000 with freed memory kept, and took
// a quarter more system time.  This turns the mapping of blocks off (a
// block the heap cannot grow for is still mapped, as the library falls
// back to that) and the giving back of the heap's top.  It changes where
// blocks lie, never what they hold.  Elsewhere it does nothing.  True
// where the library took both settings.
bool keep_freed_memory();

// Whether keep_freed_memory has taken its settings in this process.
bool freed_memory_kept();

// How a line of the screen ends: the C runtime of Windows writes its
// text-mode standard output with CR LF, as every console program there
// does; Linux ends it with LF alone.  Files are written in binary mode and
// end their lines with LF everywhere.
const char* screen_line_end();

}  // namespace tesseramill
