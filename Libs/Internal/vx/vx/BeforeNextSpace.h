#pragma once

#include "vx/Api.h"
#include "vx/CString.h"

/// Takes the first word off a text: returns the word and leaves the rest in `aText`.
///
/// Words end at a blank or a tab. A quote, double or single, groups up to the same character, also
/// where it opens in the middle of a word (`ab"c d"` is one word), and without a closing one up to the
/// end. A word that begins and ends with double quotes loses both; one with single quotes does where
/// `afUnquoteSingle` is set. One pair is removed, and a lone quote character stays. The rest has no
/// whitespace at either end. A NUL byte ends the text.
///
/// `aFound`, unless null, receives whether there was a word, even one of two quotes only.
///
///     vxCString theText("set 'low volume' 5");
///     BeforeNextSpace(theText, &theFound, true);   // "set", leaves "'low volume' 5"
///     BeforeNextSpace(theText, &theFound, true);   // "low volume", leaves "5"
///
/// Threads:  one at a time.
/// Cost:     linear in the whole text.
VX_EXPORT vxCString BeforeNextSpace(vxCString& aText, bool* aFound, bool afUnquoteSingle);
