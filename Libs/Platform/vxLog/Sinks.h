#pragma once

// Where records go while no handler is set.

#include <libvxLog/Log.h>

#include <string>

/// One begin-append-end sequence.
struct vxLogRecord {
    int mLevel;
    vxLogModule mModule;
    const char* mFile;
    int mLine;
    std::string mText;
    vxLogRecord* mOuter;  // the record that was open when this one began, or null
};

/// Writes the record to every sink that is switched on, else to standard error.
void vxWriteToSinks(const vxLogRecord& aRecord);
