// PWindowPlaces: where a companion window of the main window (the Book,
// the help) keeps its place between runs. The main window implements it
// over its settings; the windows of this layer only name their value.
#pragma once

class SWnd;

class PWindowPlaces {
public:
    virtual ~PWindowPlaces() = default;
    // Moves window to the placement stored under name, fitted to the work
    // area; false, with the window left as it is, when none is stored.
    virtual bool RestorePlacement(const char* name, SWnd* window) = 0;
    // Stores the window's placement under name.
    virtual void StorePlacement(const char* name, SWnd* window) = 0;
};
