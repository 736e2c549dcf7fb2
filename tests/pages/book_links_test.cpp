// What each link of the Book does: folder, song (with and without Ctrl),
// album, and everything that must stay an ordinary navigation (web
// addresses, the page itself, paths above the root, dot parts).
#include "pages/book_links.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using Action = PBookLinkAction;

struct LinkCase {
    const char* url;
    bool ctrl;
    Action action;
    const char* path;
    const char* select;
};

TEST(BookLinks, EachLinkOfTheBookDoesItsOwnThing) {
    const char* root = "/music/Collection/";
    const LinkCase cases[] = {
        // Songs and videos: played alone, or added with Ctrl.
        {"file:///music/Collection/Rock/Album/01%20One.mp3", false, Action::PlaySong,
         "/music/Collection/Rock/Album/01 One.mp3", ""},
        {"file:///music/Collection/Rock/Album/01%20One.mp3", true, Action::QueueSong,
         "/music/Collection/Rock/Album/01 One.mp3", ""},
        {"file:///music/Collection/Rock/clip.AVI", false, Action::PlaySong,
         "/music/Collection/Rock/clip.AVI", ""},
        {"file:///music/Collection/a.flac", true, Action::QueueSong, "/music/Collection/a.flac",
         ""},
        {"file:///music/Collection/Radio/station.wax", false, Action::PlaySong,
         "/music/Collection/Radio/station.wax", ""},
        // Non-ASCII names arrive escaped as UTF-8.
        {"file:///music/Collection/%C3%91and%C3%BA/canci%C3%B3n.ogg", false, Action::PlaySong,
         "/music/Collection/Ñandú/canción.ogg", ""},
        // Albums: the folder named by the path without ".album".
        {"file:///music/Collection/Rock/Album%20Two.album", false, Action::PlayAlbum,
         "/music/Collection/Rock/Album Two/", ""},
        {"file:///music/Collection/Jazz.ALBUM", true, Action::PlayAlbum, "/music/Collection/Jazz/",
         ""},
        // Folder links: the parent opened, the folder's row selected.
        {"file:///music/Collection/Rock/Artist.link", false, Action::OpenFolder,
         "/music/Collection/Rock/", "Artist"},
        {"file:///music/Collection/Rock.Link", false, Action::OpenFolder, "/music/Collection/",
         "Rock"},
        // A Book moved with its collection: the part below the root's depth
        // names the target under the root.
        {"file:///media/disk/Rock/Album/song.mp3", false, Action::PlaySong,
         "/music/Collection/Rock/Album/song.mp3", ""},
        // A query or fragment is no part of the file.
        {"file:///music/Collection/a.mp3?x=1#top", false, Action::PlaySong,
         "/music/Collection/a.mp3", ""},
        {"file://localhost/music/Collection/a.mp3", false, Action::PlaySong,
         "/music/Collection/a.mp3", ""},
        // Ordinary navigations.
        {"file:///music/Collection/Book.htm", false, Action::Navigate, "", ""},
        {"file:///music/Collection/Book/book3.jpg", false, Action::Navigate, "", ""},
        {"https://example.org/song.mp3", false, Action::Navigate, "", ""},
        {"http://127.0.0.1/Rock.album", false, Action::Navigate, "", ""},
        {"about:blank", false, Action::Navigate, "", ""},
        {"", false, Action::Navigate, "", ""},
        {"file:///music/a.mp3", false, Action::Navigate, "", ""}, // not below the root's depth
        {"file:///music/Collection/..", false, Action::Navigate, "", ""},
        {"file:///music/Collection/Rock/../../x.mp3", false, Action::Navigate, "", ""},
        {"file:///music/Collection/Rock/%2e%2e/x.mp3", false, Action::Navigate, "", ""},
        {"file:///music/Collection/.album", false, Action::Navigate, "", ""},
        {"file:///music/Collection/Rock/noextension", false, Action::Navigate, "", ""},
        {"file:///music/Collection/a%00.mp3", false, Action::Navigate, "", ""},
        {"file://hostonly", false, Action::Navigate, "", ""},
    };
    for (const LinkCase& c : cases) {
        SCOPED_TRACE(std::string(c.url) + (c.ctrl ? " with Ctrl" : ""));
        PBookLink link = DecideBookLink(c.url, root, c.ctrl);
        EXPECT_EQ(link.action, c.action);
        EXPECT_STREQ(link.path.c_str(), c.path);
        EXPECT_STREQ(link.select.c_str(), c.select);
    }
}

TEST(BookLinks, RootWithoutItsSlashOrAtTheTopOfTheDisk) {
    PBookLink link = DecideBookLink("file:///music/Rock/a.mp3", "/music", false);
    EXPECT_EQ(link.action, Action::PlaySong);
    EXPECT_STREQ(link.path.c_str(), "/music/Rock/a.mp3");

    link = DecideBookLink("file:///Rock.album", "/", false);
    EXPECT_EQ(link.action, Action::PlayAlbum);
    EXPECT_STREQ(link.path.c_str(), "/Rock/");

    // No root, or a relative one: nothing is the Book's.
    EXPECT_EQ(DecideBookLink("file:///a.mp3", "", false).action, Action::Navigate);
    EXPECT_EQ(DecideBookLink("file:///a.mp3", nullptr, false).action, Action::Navigate);
    EXPECT_EQ(DecideBookLink("file:///a/b.mp3", "a/", false).action, Action::Navigate);
    EXPECT_EQ(DecideBookLink(nullptr, "/music/", false).action, Action::Navigate);
}

TEST(BookLinks, LocalPathOfUrlDecodesOnlyWhatIsEscaped) {
    const std::pair<const char*, const char*> cases[] = {
        {"file:///a/b%20c", "/a/b c"},
        {"FILE:///a", "/a"},
        {"/plain/path", "/plain/path"},
        {"file:/short/form", "/short/form"},
        {"file:///a/100%", "/a/100%"},   // a lone "%" stays
        {"file:///a/%zz%4", "/a/%zz%4"}, // so does a broken escape
        {"file:///a/%2Fb", "/a//b"},     // an escaped "/" is a "/"
        {"file:///a#frag", "/a"},
        {"http://host/a", ""},
        {"file://host", ""},
        {"relative/path", ""},
        {"file:///a%00b", ""},
    };
    for (const auto& [url, path] : cases) {
        EXPECT_STREQ(LocalPathOfUrl(url).c_str(), path) << url;
    }
}

} // namespace
