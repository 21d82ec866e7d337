#pragma once

#include "vx/Api.h"
#include "vx/CString.h"

struct vxArray;

/// A named text of a message.
struct vxJSONMessageParam {
    vxCString mKey;    ///< its name
    vxCString mValue;  ///< its text
};

/// Builds and reads a small JSON message: a function's name, a status, and named texts.
///
///     {"function_name": "play", "status": "true", "parameters": {"track": "7"}}
///
/// The status travels as a text: a JSON boolean is no status.
///
/// Threads:  one at a time.
class VX_EXPORT vxJSONMessageBuilder {
public:
    /// A message without a name, of status false, without parameters.
    vxJSONMessageBuilder();

    /// As the above, then Set().
    explicit vxJSONMessageBuilder(const vxCString& aJSON);
    ~vxJSONMessageBuilder();
    vxJSONMessageBuilder(const vxJSONMessageBuilder&) = delete;
    vxJSONMessageBuilder& operator=(const vxJSONMessageBuilder&) = delete;

    /// The name of the function.
    /// @{
    void SetFuncName(const vxCString& aName) { mFuncName = aName; }
    const vxCString& GetFuncName() const { return mFuncName; }
    /// @}

    /// The status: did the function succeed?
    /// @{
    void SetStatus(bool afStatus) { mStatus = afStatus; }
    bool GetStatus() const { return mStatus; }
    /// @}

    /// Appends a parameter; nobody looks whether the key is there already.
    void AddParameter(const vxCString& aKey, const vxCString& aValue);

    /// Returns the value of the first parameter of a key, or the empty text.
    vxCString GetParameter(const vxCString& aKey) const;

    /// Returns the message as indented text. Of parameters with one key the last counts.
    vxCString ToJSON() const;

    /// Reads a message over this one: name and status are replaced, parameters are appended.
    ///
    /// Whatever is missing or of a wrong kind is logged as an error, and reading goes on: a missing
    /// name stays what it was, a missing status is false.
    void Set(const vxCString& aJSON);

private:
    vxCString mFuncName;
    bool mStatus;
    vxArray* mJSONParams;  // owned vxJSONMessageParam, in order
};
