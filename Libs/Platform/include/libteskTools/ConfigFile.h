#pragma once

#include <libteskTools/Types.h>

// Settings in INI files: a read-only file, which is never written, and a writable copy beside it.
//
// A file is lines of UTF-8 or other text:
//
//     ; or # begins a comment
//     key=value                      outside any section
//     [section]
//     key=value
//     quoted="  blanks, \"quotes\", \\, \n, \r and \t kept  "
//
// Blanks around names and values do not count. Names are case-sensitive. Of equal keys in a section
// the last counts; sections of one name are one section. What is no such line, or holds a NUL, is
// kept and ignored. A byte order mark in front of a line is skipped.
//
// The keys of both files are seen, and the writable copy wins. Deleting a key that the read-only file
// holds leaves the line ";deleted=key" in the writable copy, which hides it. A change lives in memory
// until it is saved. Saving reads the writable copy again, makes the unsaved changes in that and
// replaces the file as a whole: what others changed meanwhile stays, and at any moment the file is
// the old one or the new one. Of two programs that save in the same moment the later wins. Comments,
// blank lines, order and unknown lines stay; lines of a file that ends its lines with CR LF do so.
//
// A section of null or "" stands for the keys outside any section. A missing or unreadable file
// counts as empty; so does one of more than 16 MiB. With a null handle readers give their default
// and writers fail. A null key is in no file.
//
// Threads:  one at a time for one handle.

VX_C_BEGIN

/// An open pair of files.
typedef struct vxConfigFile vxConfigFile;

/// Returns an allocated text for a variable's name, or null.
typedef char* (*vxConfigFile_SubstituteFunc)(void* aContext, const char* aName);

/// Reads both files; either path may be null. `aName` names the pair in log records.
///
/// Owner:    the caller, who releases the handle with vxConfigFile_Delete().
VX_API vxConfigFile* vxConfigFile_New(const char* aReadPath, const char* aWritePath,
                                      const char* aName);

/// Closes the files; unsaved changes are lost. Null does nothing.
VX_API void vxConfigFile_Delete(vxConfigFile* aFile);

/// Drops unsaved changes and reads both files again.
VX_API void vxConfigFile_Reset(vxConfigFile* aFile);

/// Writes the changes to the writable copy, and makes sure that they are on the medium.
///
/// Without a change nothing is written.
///
/// Fails:    false, with a log record, when there is no writable copy, when one exists but cannot be
///           read or must not be written, or when a step fails; the file is the old one then and the
///           changes stay unsaved.
/// Cost:     waits until the medium has the new file.
VX_API bool vxConfigFile_Save(vxConfigFile* aFile);

/// Returns the value of a key, or a copy of the default; null only for a null default.
///
/// Owner:    the caller, who releases the text with free().
VX_API char* vxConfigFile_GetString(const vxConfigFile* aFile, const char* aSection,
                                    const char* aKey, const char* aDefault);

/// As vxConfigFile_GetString(), with each "$(NAME)" replaced by what the function returns for NAME,
/// or by nothing when it returns null. Replacements are not searched again. The texts that the
/// function returns are released with free().
VX_API char* vxConfigFile_GetStringWithSubstitution(const vxConfigFile* aFile, const char* aSection,
                                                    const char* aKey, const char* aDefault,
                                                    vxConfigFile_SubstituteFunc aFunc,
                                                    void* aContext);

/// Sets a key; a null value counts as "".
///
/// Fails:    false for a name that a file cannot hold: an empty key, one with '=' or a line end, or
///           that begins with '[', ';', '#' or a byte order mark; a section with a line end or ']';
///           blanks at either end.
VX_API bool vxConfigFile_SetString(vxConfigFile* aFile, const char* aSection, const char* aKey,
                                   const char* aValue);

// The number of a key in base 10, or the default when it is absent, no number, or out of range.

/// Returns a signed number of 32 bits.
VX_API int32_t vxConfigFile_GetInt32(const vxConfigFile* aFile, const char* aSection,
                                     const char* aKey, int32_t aDefault);
/// Returns an unsigned number of 32 bits.
VX_API uint32_t vxConfigFile_GetUInt32(const vxConfigFile* aFile, const char* aSection,
                                       const char* aKey, uint32_t aDefault);
/// Returns a number up to 65535.
VX_API uint16_t vxConfigFile_GetUInt16(const vxConfigFile* aFile, const char* aSection,
                                       const char* aKey, uint16_t aDefault);
/// Returns a number up to 255.
VX_API uint8_t vxConfigFile_GetUInt8(const vxConfigFile* aFile, const char* aSection,
                                     const char* aKey, uint8_t aDefault);

/// As vxConfigFile_SetString(), with the number in base 10.
VX_API bool vxConfigFile_SetInt32(vxConfigFile* aFile, const char* aSection, const char* aKey,
                                  int32_t aValue);
/// As vxConfigFile_SetInt32().
VX_API bool vxConfigFile_SetUInt32(vxConfigFile* aFile, const char* aSection, const char* aKey,
                                   uint32_t aValue);

/// Returns whether a key says 1, true, yes or on rather than 0, false, no or off, in any case; the
/// default for anything else.
VX_API bool vxConfigFile_OptionIsSet(const vxConfigFile* aFile, const char* aSection,
                                     const char* aKey, bool afDefault);

/// Deletes a key; false when no file has it.
VX_API bool vxConfigFile_DeleteKey(vxConfigFile* aFile, const char* aSection, const char* aKey);

/// Deletes every key of a section, and its header where nothing but blank lines is left below it;
/// false when there was no key.
VX_API bool vxConfigFile_DeleteSection(vxConfigFile* aFile, const char* aSection);

/// Counts the sections that have keys: of both files, or of the writable copy only.
///
/// Cost:     counts and names are collected once after each change.
VX_API size_t vxConfigFile_GetSectionCount(const vxConfigFile* aFile, bool afWritableOnly);

/// Returns the name of such a section, those of the read-only file first; null beyond the last.
///
/// Owner:    the caller, who releases the text with free().
VX_API char* vxConfigFile_GetSectionName(const vxConfigFile* aFile, size_t anIndex,
                                         bool afWritableOnly);

/// Counts the keys of a section, as the sections are counted.
///
/// Cost:     as the sections, for the section that was asked for last.
VX_API size_t vxConfigFile_GetKeyCount(const vxConfigFile* aFile, const char* aSection,
                                       bool afWritableOnly);

/// Returns the name of such a key, those of the read-only file first; null beyond the last.
///
/// Owner:    the caller, who releases the text with free().
VX_API char* vxConfigFile_GetKeyName(const vxConfigFile* aFile, const char* aSection,
                                     size_t anIndex, bool afWritableOnly);

/// Makes sure that two directories exist, with those above them; null or "" needs nothing.
///
/// Fails:    false when one cannot be made, or is no directory.
VX_API bool vxConfigFile_CreatePaths(const vxConfigFile* aFile, const char* aReadPath,
                                     const char* aWritePath);

VX_C_END
