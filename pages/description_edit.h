// Editing a description as the description window does, without a window:
// what the toolbar's mark, group and bold commands make of a selection, and
// how the text of a description file is read for editing and written back.
//
// The text is held as lines without their ends (the editor's model); a
// position is a line and a byte column. A command reads the lines its
// selection covers and answers with the lines that replace them and the
// selection to show afterwards, so that the window applies it as one step
// that can be undone.
//
// The marks of a line pair up in order: the first "#" with the second, the
// third with the fourth, and so on; a pair with a blank inside is a mark
// ("#tag text#" or "#tag text@link#"). Nothing in a line can be escaped, so
// a command never writes what would pair differently: where the selected
// part of a line holds a "#" of its own, or a lone "#" earlier on the line
// would take the new mark's first "#", that line is left as it was and
// counted as refused. A mark command over a part that lies inside an
// existing mark gives that mark the new tag instead of nesting a second
// one. Blanks and tabs at either end of a selected part stay outside what
// is written round it, so the page keeps the words apart and a line keeps
// its indentation. Afterwards the selection runs over what was written.
#pragma once

#include <compare>
#include <string>
#include <vector>

#include "foundation/string.h"

struct PTextPoint {
    int line = 0;
    int column = 0;
    auto operator<=>(const PTextPoint&) const = default;
};

// The outcome of a command: lines first to last (inclusive) of the text
// are replaced by lines; then anchor to caret is selected (positions in the
// new text). Nothing is to be done when changed is false.
struct PDescriptionEdit {
    bool changed = false;
    int first = 0;
    int last = 0;
    std::vector<std::string> lines;
    PTextPoint anchor;
    PTextPoint caret;
    int refused = 0; // lines whose selected part was left as it was
};

// The commands. lines are the text's lines from start.line to end.line,
// whole; start and end are the selection's ends in the text (start no
// later than end; equal for a caret without a selection).
//
// Mark: with no selection, "#tag #" at the caret with the caret before the
// closing "#" (in an existing mark, that mark gets the tag); with one, each
// line's selected part becomes "#tag part#" (an empty part, or one of
// blanks only, stays as it is: a selection ending at the start of a line
// marks nothing there).
PDescriptionEdit MarkSelection(const std::vector<std::string>& lines, PTextPoint start,
                               PTextPoint end, const char* tag);
// Bold: each line's selected part within "<b>" and "</b>"; nothing with no
// selection. A part whose ends would fall inside a mark's tag or link is
// refused.
PDescriptionEdit BoldSelection(const std::vector<std::string>& lines, PTextPoint start,
                               PTextPoint end);
// Group: the heading "{title}" and a line end, replacing the selection;
// the title is the selected text with its line ends made blanks and its
// braces left out (a title cannot hold them). A heading takes its line
// alone, so where text stands before the selection on its line, a line end
// goes first. With no selection the caret goes between the braces,
// otherwise after the line end.
PDescriptionEdit GroupSelection(const std::vector<std::string>& lines, PTextPoint start,
                                PTextPoint end);

// Where a "#" pair of a line stands: a and b the two "#", c the first blank
// between them (-1: no mark), d the first "@" after c and before b (-1: no
// link).
struct PMarkPair {
    int a = 0;
    int b = 0;
    int c = -1;
    int d = -1;
    bool operator==(const PMarkPair&) const = default;
};
// The pairs of a line in order, as the page generator reads them.
std::vector<PMarkPair> FindMarkPairs(const std::string& line);

// The state of a description opened for editing.
enum PDescriptionState {
    DESCRIPTION_NEW = 0,        // no file yet: an empty text, written at the first save
    DESCRIPTION_LOADED = 1,     // read
    DESCRIPTION_UNREADABLE = 2, // a file is there but cannot be edited: shown, never written
};

// The largest description opened for editing.
constexpr int DESCRIPTION_MAX_EDIT_BYTES = 16 * 1024 * 1024;

// Reads the description at path for the editor: text receives it (not
// valid UTF-8: taken as Windows-1252; NUL and the other control characters
// but tab and the line ends are left out, and reason says so). A path where
// nothing is gives DESCRIPTION_NEW with an empty text; a file that cannot be
// read, a folder, or one larger than DESCRIPTION_MAX_EDIT_BYTES gives
// DESCRIPTION_UNREADABLE and the reason.
PDescriptionState LoadDescriptionForEditing(const char* path, SString* text, SString* reason);

// The bytes of a description file for the editor's lines: CR LF after each
// line but the last. Exactly one empty line means no file ("" and empty
// set).
std::string DescriptionFileBytes(const std::vector<std::string>& lines, bool* empty);

// Writes the editor's lines to path: atomically replaced, or removed when
// the lines are exactly one empty line (a path where nothing is counts as
// done). False, with the file as it was and reason set, on failure.
bool SaveDescriptionLines(const char* path, const std::vector<std::string>& lines, SString* reason);
