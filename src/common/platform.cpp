#include "common/platform.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <limits>
#include <string_view>

#ifdef _WIN32
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#include <aclapi.h>
#include <fcntl.h>
#include <io.h>
#include <psapi.h>
#include <shellapi.h>

#include <thread>
#else
#include <fcntl.h>
#if defined(__GLIBC__)
#include <malloc.h>
#endif
#include <poll.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace tesseramill {

namespace fs = std::filesystem;

std::filesystem::path path_from_utf8(const std::string& text) {
  return fs::path(std::u8string(reinterpret_cast<const char8_t*>(text.data()), text.size()));
}

std::string path_to_utf8(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return std::string(reinterpret_cast<const char*>(text.data()), text.size());
}

// Why a large output file is written over where it stands.  Emptying a
// file frees its blocks, and a disc mounted to tell the device of every
// freed block (discard, as on the benchmark machine) waits on the device
// for it: 0.25 to 0.30 s for each of the map files of 430 MB of a million
// cells, some 1.6 s for the files a run again in the same folder replaces,
// and the blocks of the new files are then found and taken again.  Turned
// to zeros where they stand (FALLOC_FL_ZERO_RANGE, which marks the blocks
// unwritten and frees none), the old bytes are gone at once, as emptying
// leaves them, and the new ones go into the same blocks; cut_file_at then
// frees only what lies past the new length.  A million cells with 3
// passes run again in their folder took 0.859 and 0.938 of the time of
// emptying (farm-bench, two sets of 5 pairs, each pair faster).
//
// What the file ends as is what emptying and writing gives: the bytes
// written, up to the cut.  A run that fails closes its files through the
// same steps, so each ends where its writing stopped.  A run killed while
// writing leaves zeros where emptying would have left nothing.  The file
// keeps what emptying keeps too: its owner, permissions and links.  Where
// the file system does not turn bytes to zeros in place, the file is
// emptied (ftruncate to 0), so no old byte is ever left; where the file
// cannot be opened for writing, fopen is asked, and refuses it as before.
constexpr std::int64_t kOverwriteFromBytes = std::int64_t{16} << 20;

// Why the written pages are let go of.  A run of a million cells writes
// some 2.9 GB of files and reads none of them again.  Left in the cache,
// every page of them takes a page of free memory, and on a virtual machine
// whose host takes the guest's free memory back (free page reporting) the
// first touch of such a page costs a fault in the host: on the benchmark
// machine, 3.2 s of system time per GB written, against 0.24 s per GB for
// pages freed moments before (dd, 2.1 GB).  A run of a million cells in a
// fresh folder spent 4.7 to 9.4 s of system time so, and 1.1 to 1.4 s since.
// Dropping what has been written out keeps the cache of a file to a step
// or two, whose pages the next steps take again while they are still warm.
//
// The costs.  The bytes go to disc during the run instead of after it:
// SYNC_FILE_RANGE_WRITE starts the writing without waiting for it to end,
// but it waits for room when the disc's queue is full, so a disc slower
// than the run's output (160 MB/s on average for a million cells) paces
// the run.  A program that reads the files soon afterwards reads them from
// disc.  Nothing can be lost: the system drops only pages already written
// out, and keeps any still dirty or being written when asked, which are
// then merely not dropped.  Files below a step are never asked about, and
// the requests are hints whose failure (a pipe, a file system without
// them) changes nothing but the cache.
bool release_written(std::FILE* file, std::size_t bytes, WrittenSpan& span) {
  span.given += bytes;
#ifdef __linux__
  if (file == nullptr || span.given - span.sent < kReleaseStep) return true;
  if (std::fflush(file) != 0) return false;
  const int descriptor = ::fileno(file);
  const std::uint64_t before = span.sent;
  ::sync_file_range(descriptor, static_cast<off_t>(span.sent), static_cast<off_t>(span.given - span.sent),
                    SYNC_FILE_RANGE_WRITE);
  span.sent = span.given;
  // The bytes asked for at the request before have had a step's time to
  // reach the disc.
  if (before > span.dropped) {
    ::posix_fadvise(descriptor, static_cast<off_t>(span.dropped), static_cast<off_t>(before - span.dropped),
                    POSIX_FADV_DONTNEED);
    span.dropped = before;
  }
#else
  (void)file;
#endif
  return true;
}

std::optional<std::filesystem::path> find_on_path(const std::string& name) {
  const char* list = std::getenv("PATH");
  if (list == nullptr) return std::nullopt;
#ifdef _WIN32
  constexpr char kSeparator = ';';
  const std::vector<std::string> endings = {"", ".exe"};
#else
  constexpr char kSeparator = ':';
  const std::vector<std::string> endings = {""};
#endif
  const std::string_view folders(list);
  for (std::size_t from = 0; from <= folders.size();) {
    std::size_t to = folders.find(kSeparator, from);
    if (to == std::string_view::npos) to = folders.size();
    if (to > from) {
      for (const std::string& ending : endings) {
        const fs::path candidate = fs::path(std::string(folders.substr(from, to - from))) / (name + ending);
        std::error_code error;
        if (fs::is_regular_file(candidate, error)) return candidate;
      }
    }
    from = to + 1;
  }
  return std::nullopt;
}

std::filesystem::path fresh_temporary_folder(const std::string& prefix) {
  // A serial of this process and a clock reading make the name unlikely to
  // be taken; create_directory, which fails on a folder that exists, makes
  // sure it is not.
  static std::atomic<unsigned long> serial{0};
  const fs::path base = fs::temp_directory_path();
#ifdef _WIN32
  const unsigned long process = GetCurrentProcessId();
#else
  const unsigned long process = static_cast<unsigned long>(::getpid());
#endif
  for (;;) {
    const fs::path folder = base / (prefix + std::to_string(process) + "_" + std::to_string(serial++));
    std::error_code error;
    if (fs::create_directory(folder, error)) return folder;
    if (error) throw fs::filesystem_error("cannot create a temporary folder", folder, error);
  }
}

#ifdef _WIN32

namespace {

std::wstring wide(const std::string& text) {
  if (text.empty()) return {};
  const int size = MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
  std::wstring out(static_cast<std::size_t>(size), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), out.data(), size);
  return out;
}

std::string utf8(const wchar_t* text) {
  const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
  if (size <= 1) return {};
  std::string out(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text, -1, out.data(), size, nullptr, nullptr);
  out.pop_back();
  return out;
}

// One word of a command line as the C runtime's parser reads it back: in
// quotes, with the backslashes before a quote (and before the closing quote)
// doubled and the quote escaped.
void append_quoted(std::wstring& line, const std::wstring& word) {
  line += L'"';
  std::size_t backslashes = 0;
  for (wchar_t c : word) {
    if (c == L'\\') {
      ++backslashes;
      continue;
    }
    if (c == L'"') {
      line.append(2 * backslashes + 1, L'\\');
    } else {
      line.append(backslashes, L'\\');
    }
    backslashes = 0;
    line += c;
  }
  line.append(2 * backslashes, L'\\');
  line += L'"';
}

}  // namespace

std::FILE* open_file(const std::string& name, const char* mode) {
  const std::wstring path = wide(name);
  std::FILE* file = _wfopen(path.c_str(), wide(mode).c_str());
  if (file != nullptr || mode[0] != 'r') return file;
  // Linux opens a folder for reading and fails at its first read, so a
  // folder named as an input file is reported as a read error there.  The
  // C runtime of Windows refuses to open a folder at all; the folder is
  // opened here the way Windows allows (a handle with backup semantics),
  // whose first read fails as on Linux, so that both systems print the same
  // message.
  const DWORD attributes = GetFileAttributesW(path.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) return nullptr;
  HANDLE folder = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                              nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (folder == INVALID_HANDLE_VALUE) return nullptr;
  const int descriptor = _open_osfhandle(reinterpret_cast<intptr_t>(folder), _O_RDONLY | _O_BINARY);
  if (descriptor < 0) {
    CloseHandle(folder);
    return nullptr;
  }
  file = _fdopen(descriptor, "rb");
  if (file == nullptr) _close(descriptor);
  return file;
}

static std::vector<std::string> words_of(int argc, const char* const* argv) {
  int count = 0;
  wchar_t** words = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> out;
  if (words == nullptr || count != argc) {
    // Not started from a command line of its own (a test calling main's
    // work with made-up words): the words given are taken as they are.
    if (words != nullptr) LocalFree(words);
    for (int k = 0; k < argc; ++k) out.emplace_back(argv[k]);
    return out;
  }
  for (int k = 0; k < count; ++k) out.push_back(utf8(words[k]));
  LocalFree(words);
  return out;
}

ChildRun run_child(const std::filesystem::path& folder, const std::string& program,
                   const std::vector<std::string>& args, ChildStreams streams, double time_limit_seconds) {
  ChildRun run;
  SECURITY_ATTRIBUTES inherit{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  HANDLE read_end = nullptr;
  HANDLE write_end = nullptr;
  if (!CreatePipe(&read_end, &write_end, &inherit, 0)) return run;
  SetHandleInformation(read_end, HANDLE_FLAG_INHERIT, 0);
  HANDLE input = CreateFileW(L"NUL", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherit, OPEN_EXISTING, 0,
                             nullptr);

  std::wstring line;
  append_quoted(line, wide(program));
  for (const std::string& arg : args) {
    line += L' ';
    append_quoted(line, wide(arg));
  }
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = input;
  startup.hStdOutput = write_end;
  startup.hStdError = streams == ChildStreams::kOutputAndErrors ? write_end : GetStdHandle(STD_ERROR_HANDLE);
  PROCESS_INFORMATION process{};
  const std::wstring program_wide = wide(program);
  const std::wstring folder_wide = folder.wstring();
  // Wine has been seen to fail the start of a program that is there (once
  // in a whole run of the tests, its server busy with the other half of
  // them), so a failed start of an existing program is tried again up to
  // four times, 50 to 400 ms apart, before it counts as a program that
  // cannot be started.  A program that is not there is not waited for.
  bool started = false;
  for (int attempt = 0; attempt < 5 && !started; ++attempt) {
    if (attempt > 0) {
      if (GetFileAttributesW(program_wide.c_str()) == INVALID_FILE_ATTRIBUTES) break;
      Sleep(50u << (attempt - 1));
    }
    // CreateProcessW may write into the command line it is given, so each
    // attempt is given a fresh copy.
    std::wstring attempt_line = line;
    started = CreateProcessW(program_wide.c_str(), attempt_line.data(), nullptr, nullptr, TRUE, 0, nullptr,
                             folder_wide.c_str(), &startup, &process) != 0;
  }
  if (!started) run.status = 127;
  // The pipe ends at the child's exit only once no copy of its write end is
  // left open here.
  CloseHandle(write_end);
  if (input != INVALID_HANDLE_VALUE) CloseHandle(input);
  if (started) {
    // The screen is read on a thread of its own while this one samples the
    // child's peak working set every 10 ms as well as after its end: Windows
    // keeps the peak of an ended process, Wine does not (it reads a high
    // water mark of the running process), so there the last sample is the
    // peak, missing at most what the child's last 10 ms added.
    std::thread reader([&run, read_end] {
      char buffer[4096];
      DWORD got = 0;
      while (ReadFile(read_end, buffer, sizeof buffer, &got, nullptr) && got > 0) run.output.append(buffer, got);
    });
    auto sample_peak = [&] {
      PROCESS_MEMORY_COUNTERS memory{};
      if (GetProcessMemoryInfo(process.hProcess, &memory, sizeof memory)) {
        run.peak_kib = std::max(run.peak_kib, static_cast<long>(memory.PeakWorkingSetSize / 1024));
      }
    };
    const auto start = std::chrono::steady_clock::now();
    while (WaitForSingleObject(process.hProcess, 10) == WAIT_TIMEOUT) {
      sample_peak();
      if (!run.timed_out && time_limit_seconds > 0.0 &&
          std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() > time_limit_seconds) {
        run.timed_out = true;
        TerminateProcess(process.hProcess, 1);
      }
    }
    sample_peak();
    reader.join();
    DWORD code = 0;
    if (GetExitCodeProcess(process.hProcess, &code)) run.status = static_cast<int>(code);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
  }
  CloseHandle(read_end);
  return run;
}

std::string own_program_path() {
  std::wstring name(MAX_PATH, L'\0');
  for (;;) {
    const DWORD size = GetModuleFileNameW(nullptr, name.data(), static_cast<DWORD>(name.size()));
    if (size < name.size()) {
      name.resize(size);
      return utf8(name.c_str());
    }
    name.resize(2 * name.size());
  }
}

bool make_folder_read_only(const std::filesystem::path& folder) {
  // A folder's read-only attribute does not stop new files on Windows; an
  // access rule does.  It denies only the adding of entries to this folder
  // (not inherited), so the empty folder can still be removed.
  EXPLICIT_ACCESSW deny{};
  deny.grfAccessPermissions = FILE_ADD_FILE | FILE_ADD_SUBDIRECTORY;
  deny.grfAccessMode = DENY_ACCESS;
  deny.grfInheritance = NO_INHERITANCE;
  deny.Trustee.TrusteeForm = TRUSTEE_IS_NAME;
  deny.Trustee.TrusteeType = TRUSTEE_IS_WELL_KNOWN_GROUP;
  wchar_t everyone[] = L"EVERYONE";
  deny.Trustee.ptstrName = everyone;
  std::wstring path = folder.wstring();
  PACL old_rules = nullptr;
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  if (GetNamedSecurityInfoW(path.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, &old_rules,
                            nullptr, &descriptor) != ERROR_SUCCESS) {
    return false;
  }
  PACL rules = nullptr;
  bool done = SetEntriesInAclW(1, &deny, old_rules, &rules) == ERROR_SUCCESS &&
              SetNamedSecurityInfoW(path.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, rules,
                                    nullptr) == ERROR_SUCCESS;
  if (rules != nullptr) LocalFree(rules);
  LocalFree(descriptor);
  return done;
}

const char* null_device() { return "NUL"; }

// An empty value removes the variable from the C runtime's environment.
void clear_environment_variable(const char* name) { _putenv_s(name, ""); }

std::int64_t process_id() { return static_cast<std::int64_t>(GetCurrentProcessId()); }

const char* screen_line_end() { return "\r\n"; }

std::FILE* open_file_replacing(const std::string& name, bool& cut_at_close) {
  cut_at_close = false;
  return open_file(name, "wb");
}

bool cut_file_at(std::FILE* file, std::uint64_t length) {
  (void)length;
  return std::fflush(file) == 0;
}

bool keep_freed_memory() { return false; }

bool freed_memory_kept() { return false; }

#else

std::FILE* open_file(const std::string& name, const char* mode) { return std::fopen(name.c_str(), mode); }

std::FILE* open_file_replacing(const std::string& name, bool& cut_at_close) {
  cut_at_close = false;
#ifdef __linux__
  const std::int64_t from = overwrite_from_bytes_for_tests > 0 ? overwrite_from_bytes_for_tests : kOverwriteFromBytes;
  struct stat named {};
  if (::stat(name.c_str(), &named) != 0 || !S_ISREG(named.st_mode) || named.st_size < from) {
    return open_file(name, "wb");
  }
  const int descriptor = ::open(name.c_str(), O_WRONLY | O_CLOEXEC);
  if (descriptor < 0) return open_file(name, "wb");
  struct stat opened {};
  const bool zeroed = ::fstat(descriptor, &opened) == 0 && S_ISREG(opened.st_mode) &&
                      ::fallocate(descriptor, FALLOC_FL_ZERO_RANGE | FALLOC_FL_KEEP_SIZE, 0, opened.st_size) == 0;
  // fdopen's "w" neither empties nor moves: the stream writes from the start.
  std::FILE* file = nullptr;
  if (zeroed || ::ftruncate(descriptor, 0) == 0) file = ::fdopen(descriptor, "wb");
  if (file == nullptr) {
    ::close(descriptor);
    return open_file(name, "wb");
  }
  cut_at_close = true;
  return file;
#else
  return open_file(name, "wb");
#endif
}

bool cut_file_at(std::FILE* file, std::uint64_t length) {
  if (std::fflush(file) != 0) return false;
  return ::ftruncate(::fileno(file), static_cast<off_t>(length)) == 0;
}

static std::vector<std::string> words_of(int argc, const char* const* argv) {
  return std::vector<std::string>(argv, argv + argc);
}

ChildRun run_child(const std::filesystem::path& folder, const std::string& program,
                   const std::vector<std::string>& args, ChildStreams streams, double time_limit_seconds) {
  ChildRun run;
  int pipe_ends[2];
  if (::pipe(pipe_ends) != 0) return run;
  std::vector<std::string> words = {program};
  words.insert(words.end(), args.begin(), args.end());
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  const pid_t child = ::fork();
  if (child == 0) {
    ::close(pipe_ends[0]);
    const int input = ::open("/dev/null", O_RDONLY);
    if (input < 0 || ::dup2(input, 0) < 0 || ::dup2(pipe_ends[1], 1) < 0) ::_exit(127);
    if (streams == ChildStreams::kOutputAndErrors && ::dup2(pipe_ends[1], 2) < 0) ::_exit(127);
    if (::chdir(folder.c_str()) != 0) ::_exit(127);
    ::execv(argv[0], argv.data());
    ::_exit(127);
  }
  ::close(pipe_ends[1]);
  if (child < 0) {
    ::close(pipe_ends[0]);
    run.status = 127;
    return run;
  }
  // The screen is read until the child closes it; past the time limit the
  // child is killed, which closes it too (a second of silence after the kill
  // ends the reading all the same, should a grandchild hold the pipe).
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(time_limit_seconds);
  char buffer[4096];
  for (;;) {
    int wait_ms = -1;
    if (run.timed_out) {
      wait_ms = 1000;
    } else if (time_limit_seconds > 0.0) {
      const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
      wait_ms = static_cast<int>(std::clamp<long long>(left.count(), 0, 1000));
    }
    struct pollfd ready {pipe_ends[0], POLLIN, 0};
    const int polled = ::poll(&ready, 1, wait_ms);
    if (polled == 0) {
      if (run.timed_out) break;
      if (std::chrono::steady_clock::now() >= deadline) {
        run.timed_out = true;
        ::kill(child, SIGKILL);
      }
      continue;
    }
    if (polled < 0 && errno == EINTR) continue;
    const ssize_t got = ::read(pipe_ends[0], buffer, sizeof buffer);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) break;
    run.output.append(buffer, static_cast<std::size_t>(got));
  }
  ::close(pipe_ends[0]);
  int raw = 0;
  struct rusage usage {};
  // A child that closed its screen may still run: it gets the same limit.
  pid_t ended = 0;
  while (time_limit_seconds > 0.0 && (ended = ::wait4(child, &raw, WNOHANG, &usage)) == 0) {
    if (!run.timed_out && std::chrono::steady_clock::now() >= deadline) {
      run.timed_out = true;
      ::kill(child, SIGKILL);
    }
    ::usleep(10000);
  }
  if (ended == 0) ended = ::wait4(child, &raw, 0, &usage);
  if (ended == child) {
    run.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    run.signal = WIFSIGNALED(raw) ? WTERMSIG(raw) : 0;
    run.peak_kib = usage.ru_maxrss;
    auto seconds = [](const timeval& t) {
      return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) * 1e-6;
    };
    run.user_seconds = seconds(usage.ru_utime);
    run.system_seconds = seconds(usage.ru_stime);
  }
  return run;
}

std::string own_program_path() { return "/proc/self/exe"; }

bool make_folder_read_only(const std::filesystem::path& folder) {
  return ::chmod(folder.c_str(), 0555) == 0;
}

const char* null_device() { return "/dev/null"; }

void clear_environment_variable(const char* name) { ::unsetenv(name); }

std::int64_t process_id() { return static_cast<std::int64_t>(::getpid()); }

const char* screen_line_end() { return "\n"; }

namespace {
std::atomic<bool> memory_kept{false};
}  // namespace

bool keep_freed_memory() {
#if defined(__GLIBC__)
  // mallopt gives 1 where it took the setting.  The heap's top is kept up
  // to the largest bound the setting holds.
  const bool no_maps = ::mallopt(M_MMAP_MAX, 0) == 1;
  const bool no_trim = ::mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max()) == 1;
  if (no_maps && no_trim) memory_kept.store(true, std::memory_order_relaxed);
  return no_maps && no_trim;
#else
  return false;
#endif
}

bool freed_memory_kept() { return memory_kept.load(std::memory_order_relaxed); }

#endif

CommandLine utf8_command_line(int argc, const char* const* argv) {
  CommandLine line;
  line.words = words_of(argc, argv);
  for (const std::string& word : line.words) line.argv.push_back(word.c_str());
  line.argv.push_back(nullptr);
  return line;
}

}  // namespace tesseramill
