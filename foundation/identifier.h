// Tests for the names that definition files use for controls, resources and
// property keys. Only ASCII letters count as letters.
#pragma once

// Letters, digits and "_" only; not starting with a digit, not made of "_"
// alone, not ending in "_". Null and the empty text are no identifiers.
bool IsIdentifier(const char* text);
// An identifier with no lower-case letter and at least one letter, as
// "EDIT_NAME".
bool IsUpperIdentifier(const char* text);
// A letter, a digit or "_".
bool IsIdentifierChar(char c);
