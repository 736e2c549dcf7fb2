#include "app/cli/cli_definition.h"

#include <cstdio>
#include <cstring>
#include <string>

#include "dialogs/dialog_definition.h"
#include "foundation/file.h"
#include "toolkit/menu_definition.h"
#include "toolkit/table.h"
#include "toolkit/toolbar_definition.h"
#include "toolkit/tree_items.h"

namespace {

constexpr const char* TREE_MAGIC = "TAVORA TREE 1.0.0.0";
constexpr const char* TABLE_MAGIC = "TAVORA TABLE 1.0.0.0";

int Fail(const std::string& reason) {
    fprintf(stderr, "melkora-cli: %s\n", reason.c_str());
    return 1;
}

// Reads one kind of definition from input and writes it into output; false
// with a reason when the reader refuses it or the writer cannot write it.
bool Rewrite(const SString& magic, SFileMem& input, SFileMem& output, std::string& reason) {
    SString error;
    if (magic == DIALOG_MAGIC) {
        SDialogDefinition dialog;
        if (!dialog.Load(&input, &error)) {
            reason = std::string("not a readable dialog definition: ") + error.c_str();
            return false;
        }
        return dialog.Save(&output) || (reason = "the dialog definition cannot be written", false);
    }
    if (magic == MENU_MAGIC) {
        SMenuDefinition menu;
        if (!menu.Load(&input, nullptr, &error)) {
            reason = std::string("not a readable menu definition: ") + error.c_str();
            return false;
        }
        return menu.Save(&output) || (reason = "the menu definition cannot be written", false);
    }
    if (magic == TOOLBAR_MAGIC) {
        SToolbarDefinition toolbar;
        if (!toolbar.Load(&input, nullptr, &error)) {
            reason = std::string("not a readable toolbar definition: ") + error.c_str();
            return false;
        }
        return toolbar.Save(&output) ||
               (reason = "the toolbar definition cannot be written", false);
    }
    if (magic == TREE_MAGIC) {
        STreeItems tree;
        if (!tree.Load(&input, true)) {
            reason = "not a readable tree definition";
            return false;
        }
        return tree.Save(&output, true) ||
               (reason = "an item of the tree cannot stand in the tree definition", false);
    }
    if (magic == TABLE_MAGIC) {
        STable table;
        if (!table.Load(&input, true, true, false)) {
            reason = "not a readable table file";
            return false;
        }
        return table.Save(&output) || (reason = "the table cannot be written", false);
    }
    reason = "not a definition: the first line names no known kind";
    return false;
}

} // namespace

int RunDefinitionJob(int argc, char** argv) {
    for (int i = 0; i < argc; ++i) {
        if (strcmp(argv[i], "--help") == 0 || strcmp(argv[i], "-h") == 0) {
            fputs(DEFINITION_USAGE, stdout);
            return 0;
        }
    }
    if (argc != 1 || strncmp(argv[0], "--", 2) == 0) {
        fputs(DEFINITION_USAGE, stderr);
        return 2;
    }
    // Read whole into memory, where a line ends only at CR LF and nothing
    // else is dropped, as for a definition embedded in the program.
    SFileMem input;
    if (!input.LoadFile(argv[0])) {
        return Fail(std::string("cannot read ") + argv[0]);
    }
    SString magic = input.ReadLine(true);
    input.Rewind();
    SFileMem output;
    output.Reset(0);
    std::string reason;
    if (!Rewrite(magic, input, output, reason)) {
        return Fail(std::string(argv[0]) + ": " + reason);
    }
    int size = output.GetSize();
    if (size > 0 && fwrite(output.GetData(), 1, static_cast<size_t>(size), stdout) !=
                        static_cast<size_t>(size)) {
        return Fail("cannot write the result");
    }
    return fflush(stdout) == 0 ? 0 : Fail("cannot write the result");
}
