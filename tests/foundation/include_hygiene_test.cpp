// Public headers must not pull in platform libraries: users of a layer see
// only the project's own types. The platform headers belong in the .cpp
// files that wrap them.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

namespace {

// The layers' folders: their headers are public to the layers above.
const char* const kLayers[] = {"foundation", "toolkit", "dialogs", "controls", "editors",
                               "library",    "pages",   "panels",  "app"};

// The #include lines naming any of includes in the layers' headers (and
// sources too when withSources), outside the one folder allowed to hold
// them. The test fails when no file was read at all.
void ExpectNoInclude(const std::vector<const char*>& includes,
                     const std::vector<const char*>& allowedFolders, bool withSources) {
    std::string leaks;
    int filesRead = 0;
    for (const char* layer : kLayers) {
        std::filesystem::path folder = std::filesystem::path(MELKORA_SOURCE_DIR) / layer;
        if (!std::filesystem::is_directory(folder)) {
            continue;
        }
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
            std::string path = entry.path().string();
            std::string extension = entry.path().extension().string();
            bool allowed = false;
            for (const char* allowedFolder : allowedFolders) {
                allowed = allowed || path.find(allowedFolder) != std::string::npos;
            }
            if ((extension != ".h" && (!withSources || extension != ".cpp")) || allowed) {
                continue;
            }
            ++filesRead;
            std::ifstream in(entry.path());
            for (std::string line; std::getline(in, line);) {
                for (const char* include : includes) {
                    if (line.rfind("#include", 0) == 0 && line.find(include) != std::string::npos) {
                        leaks += path + ": " + line + "\n";
                    }
                }
            }
        }
    }
    EXPECT_GT(filesRead, 0) << "no file found under " << MELKORA_SOURCE_DIR;
    EXPECT_TRUE(leaks.empty()) << leaks;
}

} // namespace

TEST(IncludeHygiene, PublicHeadersIncludeNoPlatformLibrary) {
    ExpectNoInclude({"<gtk/", "<gdk/", "<glib", "<gio/", "<cairo", "<pango", "<gdk-pixbuf/",
                     "<curl/", "<png.h>", "<jpeglib.h>", "<zlib.h>", "<gst/", "<webkit", "<X11/",
                     "<libayatana"},
                    {"/platform/gtk/"}, false);
}

TEST(IncludeHygiene, OnlyTheGtkPlatformIncludesWindowingHeaders) {
    // The web view's wrapper makes a GTK widget (the WebKit view) too.
    ExpectNoInclude({"<gtk/", "<gdk/", "<X11/", "<gdkx", "<libayatana"},
                    {"/toolkit/platform/gtk/", "/controls/web/"}, true);
}

// controls/web/ is the library that wraps WebKitGTK.
TEST(IncludeHygiene, OnlyTheWebViewWrapperIncludesWebKit) {
    ExpectNoInclude({"<webkit", "<JavaScriptCore/", "<jsc/"}, {"/controls/web/"}, true);
}

// controls/gst/ is the library that wraps the player.
TEST(IncludeHygiene, OnlyThePlayerWrapperIncludesGStreamer) {
    ExpectNoInclude({"<gst/"}, {"/controls/gst/"}, true);
}

// The layers, lowest first, as docs/architecture.md orders them: a file
// includes project headers of its own layer and of the layers below only.
TEST(IncludeHygiene, EachLayerIncludesOnlyItsOwnAndTheLayersBelow) {
    const std::map<std::string, int> rank = {
        {"foundation", 1}, {"toolkit", 2}, {"dialogs", 3}, {"controls", 3}, {"editors", 3},
        {"library", 4},    {"pages", 4},   {"panels", 5},  {"app", 5}};
    std::string upward;
    int includesRead = 0;
    for (const auto& [layer, level] : rank) {
        std::filesystem::path folder = std::filesystem::path(MELKORA_SOURCE_DIR) / layer;
        if (!std::filesystem::is_directory(folder)) {
            continue;
        }
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
            std::string extension = entry.path().extension().string();
            if (extension != ".h" && extension != ".cpp") {
                continue;
            }
            std::ifstream in(entry.path());
            for (std::string line; std::getline(in, line);) {
                // #include "folder/name.h": the folder names the layer.
                if (line.rfind("#include \"", 0) != 0) {
                    continue;
                }
                std::string target = line.substr(10);
                size_t slash = target.find('/');
                if (slash == std::string::npos) {
                    continue; // a file beside this one
                }
                ++includesRead;
                auto included = rank.find(target.substr(0, slash));
                if (included == rank.end()) {
                    upward += entry.path().string() + ": " + line + " (no layer)\n";
                } else if (included->second > level) {
                    upward += entry.path().string() + ": " + line + "\n";
                }
            }
        }
    }
    EXPECT_GT(includesRead, 100);
    EXPECT_TRUE(upward.empty()) << "includes of a higher layer:\n" << upward;
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
