#pragma once

#include "JSONNode.h"

/// Returns the index of a word, the first of equal ones, or -1; a null dictionary has none.
int32_t vxWord_Find(const vxJSONMPackDictionary_t* aDictionary, const char* aWord, size_t aLength);

/// Returns the name block of a word, or null; a null dictionary has none.
const char* vxWord_At(const vxJSONMPackDictionary_t* aDictionary, uint64_t anIndex);
