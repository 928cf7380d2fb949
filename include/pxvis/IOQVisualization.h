#pragma once

#include <cstdint>

class IOQMenu;
class IOQVisualizationHost;
class OQStringArray; // of the library's own; hosts ask for the property "Modes"

// An entry of a menu that the user chose.
struct VisMenuCommand
{
    int32_t id;
    const char16_t* text; // of the entry
};

// A visualization, as its host sees it. All calls come from one thread, that of the host's user
// interface; nothing is thrown. The host owns the object and destroys it through the destructor,
// which takes the window with it. Slots: add at the end only.
class IOQVisualization
{
public:
    virtual ~IOQVisualization() = default;

    // Makes the window as a child of `parent`, an X11 window id, filling it and following its size.
    // Gives the new window's id; 0, with the reason in the log, if there can be none. `flags`: 0.
    virtual uintptr_t CreateWnd(uintptr_t parent, int32_t flags) = 0;

    virtual bool Reserved() = 0;

    // Adds the entries of the visualization to the menu. `level`: 0. False if there are none.
    virtual bool BuildMenu(IOQMenu* menu, int32_t level) = 0;
    // True if the entry was one of the visualization's.
    virtual bool OnMenuCommand(const VisMenuCommand* command) = 0;

    // A text from SysAllocString that the caller frees. Names, without regard to case: "Version",
    // "Display Name", "Modes" (joined by "|"), "Current Mode", "Script File", "Script Fault" (a
    // line in English on what is wrong with the script that is shown, or with the "Script File"
    // that was refused last); empty for others. Null only without memory.
    virtual char16_t* GetProperty(const char16_t* name) = 0;
    // True if the property was taken: "Current Mode", the name of a mode; "Script File", the
    // absolute path of a script that is shown in place of the mode from now on, until a mode is
    // chosen, or the empty text to end it; false, with nothing changed, for what is no script.
    // "Process Events", for hosts without a Qt or GLib main loop: milliseconds that the library's
    // windows may take at most to handle what is due, at least 60 times a second.
    virtual bool SetProperty(const char16_t* name, const char16_t* value) = 0;

    virtual const char16_t* GetName() = 0; // lives as long as the object
    virtual void GetModes(OQStringArray* names, int32_t* current) = 0;
    virtual bool SetMode(const char16_t* name) = 0; // as "Current Mode"
};

// The factory, exported by the library. `index`: 2 is "Visualizations", the 2D scripts. Null for
// any other index, and if the library can't start. `host` may be null until something is drawn; it
// is not owned and must outlive the visualization.
extern "C" IOQVisualization* CreateVisualization(int index, IOQVisualizationHost* host);

// Enter the visualizations in the machine's settings, below "Plugins\Display", and remove them.
// Both give 0.
extern "C" int32_t DllRegisterServer();
extern "C" int32_t DllUnregisterServer();
