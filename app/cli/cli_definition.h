// The "definition" job of melkora-cli: reads a dialog, menu, toolbar, tree
// or table definition, its kind told by its first line, and writes it back
// to stdout through the program's own writer.
#pragma once

constexpr const char* DEFINITION_USAGE = "usage: melkora-cli definition FILE\n";

// arguments: those after the job's name. Returns the exit status: 0 when
// the definition was read and written, 1 when the file cannot be read or
// the reader refuses it (one line on stderr), 2 on a usage error.
int RunDefinitionJob(int argc, char** argv);
