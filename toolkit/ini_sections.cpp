#include "toolkit/ini_sections.h"

#include <cstdlib>

#include "foundation/file.h"

namespace {

bool OpensSection(const SString& line) {
    int length = line.GetLength();
    return length >= 2 && line.GetAt(0) == '[' && line.GetAt(length - 1) == ']';
}

// The line as ReadLine gives it without keepBlanks.
SString TrimBlanks(const SString& line) {
    int first = 0;
    int last = line.GetLength();
    while (first < last && (line.GetAt(first) == ' ' || line.GetAt(first) == '\t')) {
        ++first;
    }
    while (last > first && (line.GetAt(last - 1) == ' ' || line.GetAt(last - 1) == '\t')) {
        --last;
    }
    return line.Mid(first, last - first);
}

} // namespace

SIniSections::~SIniSections() = default;

bool SIniSections::SetDefinitionSource(SFile* file, const char* magic, SString* reason) {
    if (file == nullptr || !file->IsOpen()) {
        *reason = "no file";
        return false;
    }
    if (file->ReadLine(true) != SString(magic)) {
        *reason = SString("the first line is not \"") + magic + "\"";
        return false;
    }
    SetSource(file);
    return true;
}

bool AddIniLine(SString& text, const char* key, const SString& value) {
    if (value.Find("\r\n") >= 0) {
        return false;
    }
    text += key;
    text += '=';
    text += value;
    text += "\r\n";
    return true;
}

void AddIniNumber(SString& text, const char* key, long long value) {
    SString number;
    number.Format("%lld", value);
    AddIniLine(text, key, number);
}

bool SIniSections::SetSource(SFile* source) {
    body.clear();
    sections.clear();
    opened.clear();
    if (source == nullptr || !source->IsOpen()) {
        return false;
    }
    SFileMem memory;
    memory.Reset(0);
    memory.AppendFrom(source);
    if (memory.GetSize() > 0) {
        body.assign(memory.GetData(), static_cast<size_t>(memory.GetSize()));
    }
    memory.Rewind();
    // Each section runs from its line up to the next line that, as it
    // stands, opens a section: where SIni's key search stops. A line that
    // opens a section only once trimmed starts one without ending the
    // others, so sections may overlap.
    std::vector<size_t> open;
    while (!memory.IsEnd()) {
        int start = memory.GetPosition();
        SString line = memory.ReadLine(true);
        if (OpensSection(line)) {
            for (size_t index : open) {
                sections[index].end = start;
            }
            open.clear();
        }
        SString trimmed = TrimBlanks(line);
        if (OpensSection(trimmed)) {
            sections.push_back({trimmed.Mid(1, trimmed.GetLength() - 2), start, -1});
            open.push_back(sections.size() - 1);
        }
    }
    for (size_t index : open) {
        sections[index].end = static_cast<int>(body.size());
    }
    return true;
}

SIni* SIniSections::Find(const char* name) {
    std::string wanted = name != nullptr ? name : "";
    auto found = opened.find(wanted);
    if (found != opened.end()) {
        return found->second.get();
    }
    std::unique_ptr<SIni> ini;
    for (const SSection& section : sections) {
        if (section.name.CompareNoCase(wanted.c_str()) == 0) {
            SFileMem text;
            text.Reset(0);
            text.Write(body.data() + section.start, section.end - section.start);
            text.Rewind();
            ini = std::make_unique<SIni>();
            ini->SetSource(&text);
            break;
        }
    }
    SIni* result = ini.get();
    opened.emplace(wanted, std::move(ini));
    return result;
}

SString SIniSections::ReadString(const char* section, const char* key) {
    SIni* ini = Find(section);
    return ini != nullptr ? ini->ReadString(section, key) : SString();
}

int SIniSections::ReadInt(const char* section, const char* key) {
    return std::atoi(ReadString(section, key).c_str());
}

bool SIniSections::ReadBool(const char* section, const char* key) {
    return ReadString(section, key) == "1";
}
