#include "child_process.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>

namespace tesseramill_bench {

ChildRun run_child(const std::vector<std::string>& args, const std::filesystem::path& folder) {
  int pipe_ends[2];
  if (::pipe(pipe_ends) != 0) std::exit(1);
  const auto start = std::chrono::steady_clock::now();
  const pid_t child = ::fork();
  if (child == 0) {
    ::dup2(pipe_ends[1], 1);
    ::close(pipe_ends[0]);
    if (::chdir(folder.c_str()) != 0) ::_exit(127);
    std::vector<char*> argv;
    std::vector<std::string> words = args;
    for (std::string& w : words) argv.push_back(w.data());
    argv.push_back(nullptr);
    ::execv(argv[0], argv.data());
    ::_exit(127);
  }
  ::close(pipe_ends[1]);
  ChildRun run;
  char buffer[4096];
  ssize_t n;
  while ((n = ::read(pipe_ends[0], buffer, sizeof buffer)) > 0) run.out.append(buffer, static_cast<std::size_t>(n));
  ::close(pipe_ends[0]);
  int status = 0;
  struct rusage usage {};
  ::wait4(child, &status, 0, &usage);
  run.wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  run.peak_kib = usage.ru_maxrss;
  run.ok = WIFEXITED(status) && WEXITSTATUS(status) == 0;
  return run;
}

}  // namespace tesseramill_bench
