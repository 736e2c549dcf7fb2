#include "foundation/ini.h"

#include <cstdlib>

namespace {

// Null names read as the empty name, which matches the section line "[]".
const char* OrEmpty(const char* text) {
    return text != nullptr ? text : "";
}

// True for a line that opens a section: at least 2 characters, "[" first
// and "]" last.
bool IsSectionLine(const SString& line) {
    int length = line.GetLength();
    return length >= 2 && line.GetAt(0) == '[' && line.GetAt(length - 1) == ']';
}

// Rewinds the stream and returns the start of the first line that, trimmed,
// reads "[name]" (case-blind), or -1.
int FindSection(SFile* file, const char* name) {
    file->Rewind();
    while (!file->IsEnd()) {
        int start = file->GetPosition();
        SString line = file->ReadLine(false);
        if (IsSectionLine(line) && line.Mid(1, line.GetLength() - 2).CompareNoCase(name) == 0) {
            return start;
        }
    }
    return -1;
}

// The start of the first line of the section whose text before its first
// "=" equals key (case-blind, untrimmed), or -1 when the section ends first.
int FindKey(SFile* file, const char* section, const char* key) {
    int sectionStart = FindSection(file, section);
    if (sectionStart < 0) {
        return -1;
    }
    file->Seek(sectionStart);
    file->ReadLine(true);
    while (!file->IsEnd()) {
        int start = file->GetPosition();
        SString line = file->ReadLine(true);
        if (line.GetLength() < 2) {
            continue;
        }
        if (IsSectionLine(line)) {
            return -1;
        }
        int equals = line.Find('=');
        if (equals >= 0 && line.Left(equals).CompareNoCase(key) == 0) {
            return start;
        }
    }
    return -1;
}

} // namespace

SIni::~SIni() = default;

bool SIni::SetFile(const char* newPath, bool create) {
    if (newPath == nullptr || *newPath == 0) {
        return false;
    }
    if (!disk.IsFile(newPath)) {
        if (!create) {
            return false;
        }
        // Append mode makes the file when missing and never truncates one
        // that another process made in the meantime.
        SFilePath file;
        if (!file.Open(newPath, true, false, false, false)) {
            return false;
        }
        file.Close();
    }
    mode = INI_FILE;
    path = newPath;
    return true;
}

bool SIni::SetSource(SFile* source) {
    if (source == nullptr) {
        return false;
    }
    mode = INI_MEMORY;
    path.Empty();
    memory.Reset(0);
    memory.AppendFrom(source);
    return true;
}

void SIni::Clear() {
    mode = INI_NONE;
    path.Empty();
    memory.Close();
}

bool SIni::PickSource(SFileMem& fileImage, SFileMem*& source) {
    if (mode == INI_MEMORY) {
        source = &memory;
        return true;
    }
    // INI_NONE has an empty path, so the load fails.
    if (path.IsEmpty() || !fileImage.LoadFile(path.c_str())) {
        return false;
    }
    source = &fileImage;
    return true;
}

SString SIni::ReadString(const char* section, const char* key) {
    SFileMem fileImage;
    SFileMem* source = nullptr;
    if (!PickSource(fileImage, source)) {
        return SString();
    }
    int start = FindKey(source, OrEmpty(section), OrEmpty(key));
    if (start < 0) {
        return SString();
    }
    source->Seek(start);
    SString line = source->ReadLine(true);
    return line.Mid(line.Find('=') + 1);
}

int SIni::ReadInt(const char* section, const char* key) {
    return std::atoi(ReadString(section, key).c_str());
}

bool SIni::ReadBool(const char* section, const char* key) {
    return ReadString(section, key) == "1";
}

bool SIni::WriteString(const char* section, const char* key, const char* value) {
    SFileMem fileImage;
    SFileMem* source = nullptr;
    if (!PickSource(fileImage, source)) {
        return false;
    }
    section = OrEmpty(section);
    key = OrEmpty(key);
    value = OrEmpty(value);
    SString line = SString(key) + "=" + value;

    int sectionStart = FindSection(source, section);
    if (sectionStart < 0) {
        // A new section goes at the end, after one blank line; an unfinished
        // last line is ended first.
        int size = source->GetSize();
        if (size > 0) {
            char last = 0;
            source->Seek(size - 1);
            source->Read(&last, 1);
            source->SeekEnd();
            if (last != '\n') {
                source->WriteLine("");
            }
            source->WriteLine("");
        }
        source->WriteLine((SString("[") + section + "]").c_str());
        source->WriteLine(line.c_str());
    } else {
        int keyStart = FindKey(source, section, key);
        if (keyStart < 0) {
            // A new key becomes the first line of its section.
            source->Seek(sectionStart);
            source->ReadLine(true);
            source->InsertBytes(line.GetLength() + 2, false);
            source->WriteLine(line.c_str());
        } else {
            // The old line is resized in place; its line end stays. Its
            // length is measured in bytes consumed, whatever bytes it holds.
            source->Seek(keyStart);
            bool endedWithCrlf = false;
            source->ReadLine(true, -1, &endedWithCrlf);
            int oldLength = source->GetPosition() - keyStart - (endedWithCrlf ? 2 : 0);
            source->Seek(keyStart);
            int change = line.GetLength() - oldLength;
            if (change > 0) {
                source->InsertBytes(change, false);
            } else if (change < 0) {
                source->RemoveBytes(-change);
            }
            source->WriteText(line.c_str(), line.GetLength());
        }
    }

    if (mode == INI_MEMORY) {
        return true;
    }
    return fileImage.SaveFile(path.c_str());
}
