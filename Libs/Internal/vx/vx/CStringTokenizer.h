#pragma once

#include <cstddef>

#include "vx/Api.h"
#include "vx/CString.h"

/// What a tokenizer does with empty tokens.
enum vxCStringTokenizerMode {
    kTokenizerMode_NotInitialized = -1,  ///< no text is set
    kTokenizerMode_Default = 0,          ///< Strtok where all delimiters are blanks, or there are
                                         ///< none; else ReturnEmptyMiddleOnly
    kTokenizerMode_ReturnEmptyMiddleOnly = 1,  ///< returned between delimiters and in front; a text
                                               ///< of delimiters only is one empty token
    kTokenizerMode_ReturnEmptyAll = 2,    ///< returned everywhere, also behind a last delimiter
    kTokenizerMode_ReturnDelimiters = 3,  ///< as 1, and each token keeps the delimiter that ended
                                          ///< it; a text of delimiters only has no token
    kTokenizerMode_Strtok = 4,            ///< skipped
};

/// The delimiters of a tokenizer that is given none.
inline constexpr char kvxCStringTokenizer_DefaultDelimiters[] = " \t\r\n";

/// Walks a text token by token.
///
///     vxCStringTokenizer theTokenizer("a,,b,", ",");
///     while (theTokenizer.HasMoreTokens()) {
///         Use(theTokenizer.GetNextToken());   // "a", "", "b"
///     }
///
/// The tokenizer shares the text's block and copies only the tokens.
///
/// Threads:  one at a time, as its strings.
class VX_EXPORT vxCStringTokenizer {
public:
    /// A tokenizer without a text: IsOk() is false.
    vxCStringTokenizer() = default;
    /// As SetString().
    explicit vxCStringTokenizer(
        const vxCString& aString,
        const vxCString& aDelimiters = kvxCStringTokenizer_DefaultDelimiters,
        vxCStringTokenizerMode aMode = kTokenizerMode_Default);

    /// Sets the delimiters, every byte of the text being one, and the mode, then the text.
    ///
    /// Asserts:  as Reinit(), for the mode kTokenizerMode_NotInitialized.
    void SetString(const vxCString& aString,
                   const vxCString& aDelimiters = kvxCStringTokenizer_DefaultDelimiters,
                   vxCStringTokenizerMode aMode = kTokenizerMode_Default);

    /// Starts over with another text, with the same delimiters and mode.
    ///
    /// Asserts:  IsOk(); there is no text then.
    void Reinit(const vxCString& aString);

    /// Returns whether GetNextToken() has a token to give.
    ///
    /// Asserts:  IsOk(); false then.
    bool HasMoreTokens() const {
        if (mNextText < mString.length()) {
            return true;
        }
        return VXCHECK(IsOk()) && mfHasMore &&
               (mMode == kTokenizerMode_ReturnEmptyAll ||
                (mMode == kTokenizerMode_ReturnEmptyMiddleOnly && mPos == 0));
    }

    /// Returns the next token, or the empty string when there are no more.
    ///
    /// Asserts:  as HasMoreTokens().
    /// Cost:     linear in the bytes that it consumes.
    vxCString GetNextToken();

    /// Returns how many tokens the remaining text has when it is walked from its start, and makes
    /// the remaining text the whole one: the position is 0 afterwards.
    ///
    /// Asserts:  IsOk(); 0 then.
    /// Cost:     linear in the remaining text.
    size_t CountTokens();

    /// Returns the text that is not consumed yet.
    vxCString GetString() const { return mString.Mid(mPos); }
    /// Returns the bytes consumed so far.
    size_t GetPosition() const { return mPos; }
    /// Returns the mode, with kTokenizerMode_Default resolved.
    vxCStringTokenizerMode GetMode() const { return mMode; }
    /// Returns whether a text is set.
    bool IsOk() const { return mMode != kTokenizerMode_NotInitialized; }

private:
    vxCString mString;      // the whole text; its first mPos bytes are consumed, and never copied
    vxCString mDelimiters;  // a set of bytes
    size_t mPos = 0;        // bytes consumed
    vxCStringTokenizerMode mMode = kTokenizerMode_NotInitialized;
    bool mfHasMore = false;  // false once the token that no delimiter ended has been taken

    bool mfIsDelimiter[256] = {};  // mDelimiters, by byte
    size_t mNextText = 0;          // first place from mPos on whose byte is no delimiter
};
