// Runs melkora-cli as a user runs it: arguments already quoted for the
// shell, input on stdin, and stdout and stderr kept in files of the test's
// folder (so stderr is no terminal and no progress bar is drawn).
#pragma once

#include <sys/wait.h>

#include <cstdlib>
#include <string>

#include "support/temp_dir.h"

struct CliRun {
    int status = -1;
    std::string out;
    std::string err;
};

// The text in single quotes for the shell.
inline std::string Quote(const std::string& text) {
    std::string quoted = "'";
    for (char c : text) {
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return quoted + "'";
}

#ifdef MELKORA_CLI_PATH
inline CliRun RunCli(const TempDir& dir, const std::string& arguments,
                     const std::string& input = "") {
    std::string in = dir.Write("cli-in", input);
    std::string command = Quote(MELKORA_CLI_PATH) + " " + arguments + " <" + Quote(in) + " >" +
                          Quote(dir / "cli-out") + " 2>" + Quote(dir / "cli-err");
    int result = std::system(command.c_str());
    CliRun run;
    run.status = WIFEXITED(result) ? WEXITSTATUS(result) : -1;
    run.out = TempDir::Read(dir / "cli-out");
    run.err = TempDir::Read(dir / "cli-err");
    return run;
}
#endif
