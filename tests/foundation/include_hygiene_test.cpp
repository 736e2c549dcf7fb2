// Public headers must not pull in platform libraries: users of a layer see
// only the project's own types. The platform headers belong in the .cpp
// files that wrap them.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

const char* const kPlatformIncludes[] = {
    "<gtk/", "<gdk/", "<glib", "<gio/", "<cairo", "<pango", "<gdk-pixbuf/",
    "<curl/", "<png.h>", "<jpeglib.h>", "<zlib.h>", "<gst/", "<webkit", "<X11/",
};

// The folders whose headers are public to the layers above; the GTK
// platform of the toolkit is the one place allowed to include them.
const char* const kLayers[] = {"foundation", "toolkit", "dialogs", "controls", "editors",
                               "library",    "pages",   "panels",  "app"};

// Returns the offending lines; headersRead counts the headers looked at.
std::vector<std::string> FindLeaks(const std::filesystem::path& root, int& headersRead) {
    std::vector<std::string> leaks;
    headersRead = 0;
    for (const char* layer : kLayers) {
        std::filesystem::path folder = root / layer;
        if (!std::filesystem::is_directory(folder)) {
            continue;
        }
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
            std::string path = entry.path().string();
            if (entry.path().extension() != ".h" || path.find("/platform/gtk/") != std::string::npos) {
                continue;
            }
            ++headersRead;
            std::ifstream in(entry.path());
            std::string line;
            while (std::getline(in, line)) {
                if (line.rfind("#include", 0) != 0) {
                    continue;
                }
                for (const char* include : kPlatformIncludes) {
                    if (line.find(include) != std::string::npos) {
                        leaks.push_back(path + ": " + line);
                    }
                }
            }
        }
    }
    return leaks;
}

} // namespace

TEST(IncludeHygiene, PublicHeadersIncludeNoPlatformLibrary) {
    int headersRead = 0;
    std::vector<std::string> leaks = FindLeaks(MELKORA_SOURCE_DIR, headersRead);
    ASSERT_GT(headersRead, 0) << "no header found under " << MELKORA_SOURCE_DIR;
    std::string report;
    for (const std::string& leak : leaks) {
        report += leak + "\n";
    }
    EXPECT_TRUE(leaks.empty()) << report;
}

// Windowing headers (GTK, GDK, X11) in any source or header outside the GTK
// platform folder.
std::vector<std::string> FindWindowingIncludes(const std::filesystem::path& root, int& filesRead) {
    const char* const windowing[] = {"<gtk/", "<gdk/", "<X11/", "<gdkx"};
    std::vector<std::string> leaks;
    filesRead = 0;
    for (const char* layer : kLayers) {
        std::filesystem::path folder = root / layer;
        if (!std::filesystem::is_directory(folder)) {
            continue;
        }
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
            std::string path = entry.path().string();
            std::string extension = entry.path().extension().string();
            if ((extension != ".h" && extension != ".cpp") ||
                path.find("/toolkit/platform/gtk/") != std::string::npos) {
                continue;
            }
            ++filesRead;
            std::ifstream in(entry.path());
            std::string line;
            while (std::getline(in, line)) {
                if (line.rfind("#include", 0) != 0) {
                    continue;
                }
                for (const char* include : windowing) {
                    if (line.find(include) != std::string::npos) {
                        leaks.push_back(path + ": " + line);
                    }
                }
            }
        }
    }
    return leaks;
}

TEST(IncludeHygiene, OnlyTheGtkPlatformIncludesWindowingHeaders) {
    int filesRead = 0;
    std::vector<std::string> leaks = FindWindowingIncludes(MELKORA_SOURCE_DIR, filesRead);
    ASSERT_GT(filesRead, 0);
    std::string report;
    for (const std::string& leak : leaks) {
        report += leak + "\n";
    }
    EXPECT_TRUE(leaks.empty()) << report;
}

// GStreamer headers in any source or header outside controls/gst/, the
// library that wraps the player.
TEST(IncludeHygiene, OnlyThePlayerWrapperIncludesGStreamer) {
    std::vector<std::string> leaks;
    int filesRead = 0;
    for (const char* layer : kLayers) {
        std::filesystem::path folder = std::filesystem::path(MELKORA_SOURCE_DIR) / layer;
        if (!std::filesystem::is_directory(folder)) {
            continue;
        }
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
            std::string path = entry.path().string();
            std::string extension = entry.path().extension().string();
            if ((extension != ".h" && extension != ".cpp") ||
                path.find("/controls/gst/") != std::string::npos) {
                continue;
            }
            ++filesRead;
            std::ifstream in(entry.path());
            std::string line;
            while (std::getline(in, line)) {
                if (line.rfind("#include", 0) == 0 && line.find("<gst/") != std::string::npos) {
                    leaks.push_back(path + ": " + line);
                }
            }
        }
    }
    ASSERT_GT(filesRead, 0);
    std::string report;
    for (const std::string& leak : leaks) {
        report += leak + "\n";
    }
    EXPECT_TRUE(leaks.empty()) << report;
}

TEST(IncludeHygiene, UmbrellaHeaderIncludesEveryFoundationHeader) {
    std::filesystem::path folder = std::filesystem::path(MELKORA_SOURCE_DIR) / "foundation";
    std::ifstream in(folder / "foundation.h");
    std::string umbrella((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    ASSERT_FALSE(umbrella.empty());
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        std::string name = entry.path().filename().string();
        if (entry.path().extension() != ".h" || name == "foundation.h") {
            continue;
        }
        EXPECT_NE(umbrella.find("#include \"foundation/" + name + "\""), std::string::npos)
            << name << " is missing from foundation/foundation.h";
    }
}
