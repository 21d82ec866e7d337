// Orders of fields and of virtual operations, and sizes on the 32-bit target: programs built against
// one release must find everything where another release puts it.
//
// Fields and sizes are checked when this file is compiled; it is compiled without access control,
// so that private fields can be named. Slots are read from pointers to members.

#include <gtest/gtest.h>
#include <libteskTools/RC4.h>
#include <vx/vx.h>

#include <cstddef>
#include <cstring>
#include <initializer_list>

namespace {

constexpr bool Rising(std::initializer_list<size_t> anOffsets) {
    size_t thePrevious = 0;
    bool theFirst = true;
    for (const size_t theOffset : anOffsets) {
        if (!theFirst && theOffset <= thePrevious) {
            return false;
        }
        thePrevious = theOffset;
        theFirst = false;
    }
    return true;
}

constexpr bool SizeOn32Bits(size_t aSize, size_t anExpected) {
    return sizeof(void*) != 4 || aSize == anExpected;
}

#define OFFSETS_1(T, a) offsetof(T, a)
#define OFFSETS_2(T, a, ...) offsetof(T, a), OFFSETS_1(T, __VA_ARGS__)
#define OFFSETS_3(T, a, ...) offsetof(T, a), OFFSETS_2(T, __VA_ARGS__)
#define OFFSETS_4(T, a, ...) offsetof(T, a), OFFSETS_3(T, __VA_ARGS__)
#define OFFSETS_5(T, a, ...) offsetof(T, a), OFFSETS_4(T, __VA_ARGS__)
#define OFFSETS_6(T, a, ...) offsetof(T, a), OFFSETS_5(T, __VA_ARGS__)
#define OFFSETS_7(T, a, ...) offsetof(T, a), OFFSETS_6(T, __VA_ARGS__)
#define OFFSETS_8(T, a, ...) offsetof(T, a), OFFSETS_7(T, __VA_ARGS__)
#define OFFSETS_9(T, a, ...) offsetof(T, a), OFFSETS_8(T, __VA_ARGS__)
#define OFFSETS_10(T, a, ...) offsetof(T, a), OFFSETS_9(T, __VA_ARGS__)
#define OFFSETS_11(T, a, ...) offsetof(T, a), OFFSETS_10(T, __VA_ARGS__)
#define OFFSETS_12(T, a, ...) offsetof(T, a), OFFSETS_11(T, __VA_ARGS__)
#define OFFSETS_13(T, a, ...) offsetof(T, a), OFFSETS_12(T, __VA_ARGS__)
#define PICK(_1, _2, _3, _4, _5, _6, _7, _8, _9, _10, _11, _12, _13, NAME, ...) NAME
#define OFFSETS(T, ...)                                                                     \
    PICK(__VA_ARGS__, OFFSETS_13, OFFSETS_12, OFFSETS_11, OFFSETS_10, OFFSETS_9, OFFSETS_8, \
         OFFSETS_7, OFFSETS_6, OFFSETS_5, OFFSETS_4, OFFSETS_3, OFFSETS_2, OFFSETS_1)       \
    (T, __VA_ARGS__)
#define FIELDS_IN_ORDER(T, ...) \
    static_assert(Rising({OFFSETS(T, __VA_ARGS__)}), #T ": order of fields")
#define SIZE_ON_32_BITS(T, aSize) \
    static_assert(SizeOn32Bits(sizeof(T), aSize), #T ": size on the 32-bit target")

// Reference counting
SIZE_ON_32_BITS(vxRefCounted, 8);
SIZE_ON_32_BITS(vxRefAny, 4);
SIZE_ON_32_BITS(vxRef<vxUserData>, 4);
static_assert(sizeof(vxRef<vxUserData>) == sizeof(void*), "a handle is one pointer");
FIELDS_IN_ORDER(vxRefCountDebug, mParentPtr, mCallStack, mNext);
SIZE_ON_32_BITS(vxRefCountDebug, 12);
SIZE_ON_32_BITS(vxNamedClass, 8);
SIZE_ON_32_BITS(vxUserData, 8);

// Strings
FIELDS_IN_ORDER(vxCString, mStringPtr, mCStringData);
SIZE_ON_32_BITS(vxCString, 8);
FIELDS_IN_ORDER(vxCStringData, mRefCount, mStringLength, mAllocatedLength);
SIZE_ON_32_BITS(vxCStringData, 12);
FIELDS_IN_ORDER(vxCStringBuffer, mString, mBuffer);
SIZE_ON_32_BITS(vxCharBuffer, 4);
SIZE_ON_32_BITS(vxWCharBuffer, 4);

// Errors
FIELDS_IN_ORDER(vxError::vxErrorInfo, mCode, mMessage, mModule, mPrevious);
SIZE_ON_32_BITS(vxError::vxErrorInfo, 20);
SIZE_ON_32_BITS(vxError, 20);

// Lists
FIELDS_IN_ORDER(vxBaseListItem, mNext, mPrev);
SIZE_ON_32_BITS(vxBaseListItem, 12);
FIELDS_IN_ORDER(vxBaseList, mFirstIterator, mBegin, mEnd, mSize);
SIZE_ON_32_BITS(vxBaseList, 20);
SIZE_ON_32_BITS(vxList<int>, 20);
FIELDS_IN_ORDER(vxBaseListIterator, mCurrentItem, mNextIterator, mList);
SIZE_ON_32_BITS(vxBaseListIterator, 16);
FIELDS_IN_ORDER(_vxDLListNode, mNext, mPrev);
SIZE_ON_32_BITS(_vxDLListNode, 8);

// String lists
FIELDS_IN_ORDER(vxStringList, mStr, mSeparatorChar, mIndex, mCount, mAllocatedLength);
SIZE_ON_32_BITS(vxStringList, 24);
SIZE_ON_32_BITS(vxCSVStringList, 24);
FIELDS_IN_ORDER(vxCStringTokenizer, mString, mDelimiters, mPos, mMode, mfHasMore);

// Buffers
FIELDS_IN_ORDER(vxDataBuffer, mPtr, mSize);
SIZE_ON_32_BITS(vxDataBuffer, 8);
FIELDS_IN_ORDER(vxCountedDataBuffer, mPtr, mSize, mBase64, mBase64Size);
SIZE_ON_32_BITS(vxCountedDataBuffer, 24);
FIELDS_IN_ORDER(vxGrowingBuffer, mPtr, mSize, mPos, mNewBufferSizeFunc);
SIZE_ON_32_BITS(vxGrowingBuffer, 16);
FIELDS_IN_ORDER(vxBitString, mBuffer, mBufferSize, mInitialBufferSize, mLastByte, mLastByteSize,
                mfBookmarked, mBookmarkedBuffer, mBookmarkedBufferSize, mBookmarkedLastByte,
                mBookmarkedLastByteSize);
SIZE_ON_32_BITS(vxBitString, 28);

// Dates
FIELDS_IN_ORDER(vxtimeval, tv_sec, tv_usec);
static_assert(sizeof(vxtimeval) == 8, "two 32-bit words on every target");
FIELDS_IN_ORDER(vxtm, tm_sec, tm_min, tm_hour, tm_mday, tm_mon, tm_year, tm_isdst, tm_wday, tm_yday,
                tm_msec);
static_assert(sizeof(vxtm) == 40, "ten 32-bit words on every target");
static_assert(sizeof(vxDateTime) == 8, "a date is its time value");
static_assert(sizeof(vxuint64) == 8, "one 64-bit word");
FIELDS_IN_ORDER(vxULongLong, mLow, mHigh);
static_assert(sizeof(vxULongLong) == 8, "two 32-bit words");

// Small values
FIELDS_IN_ORDER(vxVersion, mMajor, mMinor, mRevision);
static_assert(sizeof(vxVersion) == 12, "three 32-bit words");
FIELDS_IN_ORDER(vxRGBColor, mRed, mGreen, mBlue);
static_assert(sizeof(vxRGBColor) == 6, "three 16-bit words");
FIELDS_IN_ORDER(vxHSVColor, mHue, mSaturation, mValue);
static_assert(sizeof(vxHSVColor) == 6, "three 16-bit words");
FIELDS_IN_ORDER(vxPoint, x, y);
FIELDS_IN_ORDER(vxRect, ul, lr);
static_assert(sizeof(vxRect) == 16, "four ints");

// JSON
FIELDS_IN_ORDER(vxJSONEntry, mEntry, mfIsOrphan);
SIZE_ON_32_BITS(vxJSONEntry, 12);
SIZE_ON_32_BITS(vxJSONObject, 12);
SIZE_ON_32_BITS(vxJSONArray, 12);
SIZE_ON_32_BITS(vxJSONDocument, 12);
SIZE_ON_32_BITS(vxJSONPair, 12);
SIZE_ON_32_BITS(vxMPackDictionary, 12);
FIELDS_IN_ORDER(vxJSONMessageParam, mKey, mValue);
FIELDS_IN_ORDER(vxJSONMessageBuilder, mFuncName, mStatus, mJSONParams);

// XML
FIELDS_IN_ORDER(vxXMLProperty, mName, mValue, mNext);
FIELDS_IN_ORDER(vxXMLNode, mType, mName, mContent, mProperties, mParent, mChildren, mNext,
                mUserData);
FIELDS_IN_ORDER(vxXMLDocument, mVersion, mEncoding, mRoot);
FIELDS_IN_ORDER(vxXMLBuilder, mBuffer, mTagArray, mfTagStarted);
FIELDS_IN_ORDER(vxXMLToJSON, mXMLNode, mXMLStartNode, mfXMLStartNode);
SIZE_ON_32_BITS(vxXMLToJSON, 16);

// Property lists as JSON
FIELDS_IN_ORDER(vxJSONFormatter, mDoc, mTmp, mfNeedComma, mfStrict, mfHuman, mIndent, mIndentStr,
                mfMapBegin);
FIELDS_IN_ORDER(vxPropertyListFormatter, mProp, mCurrent, mDataIndex, mStack, mStackSize);
static_assert(sizeof(vxPropertyListSerializer) == sizeof(void*), "no fields");

// Console
FIELDS_IN_ORDER(vxCLIParameter, mType, mValue, mValueStr, mfMissing, mDataBuffer);
FIELDS_IN_ORDER(vxCLIParameterChecker, mParameterName, mType, mfRange, mMinNumberValue,
                mMaxNumberValue, mfOptional, mfFreeForm, mValueNumber, mDefaultValueNumber,
                mDefaultValueStr);
FIELDS_IN_ORDER(vxCLICommandChecker, mHelp, mParameters, mNonOptionalParameterCount,
                mOptionalParameterCount, mCommandList);
FIELDS_IN_ORDER(vxCLICommandValidator, mParameterDescription, mHelp, mError, mTypeStr,
                mParameterName, mCommandList, mType, mfRange, mMinNumberValue, mMaxNumberValue,
                mfOptional, mfFreeForm, mfError);
FIELDS_IN_ORDER(vxCLICommandSet, mCommandHashTable, mModuleNameList, mCSVModuleNameList, mError,
                mfInternal, mMainModuleName, mUserData);
FIELDS_IN_ORDER(vxCLIManager, mCommandHashTable, mInternalCommandArray, mInternalCommandSet, mError,
                mActiveModuleName, mfNewError);
FIELDS_IN_ORDER(vxCLICommand, mCLIManager, mCLICommandSet, mInput, mError, mParameters, mModuleName,
                mModuleNameList, mCommandNameList, mfShortcutCommand, mSecured);

// Program arguments
FIELDS_IN_ORDER(vxCommandLineDescription, mKind, mOptionName, mDescription, mType, mFlags);
SIZE_ON_32_BITS(vxCommandLineDescription, 20);
FIELDS_IN_ORDER(vxCommandLineOption, mKind, mOptionName, mDescription, mType, mFlags, mfHasValue,
                mInt32Value, mStringValue);
static_assert(sizeof(vxCommandLineParser) == sizeof(void*), "one owned pointer");

// Synchronisation
FIELDS_IN_ORDER(vxMutex, mMutex, mLockCount);
SIZE_ON_32_BITS(vxMutex, 8);
SIZE_ON_32_BITS(vxMutexLocker, 4);
SIZE_ON_32_BITS(vxCriticalSection, 4);
FIELDS_IN_ORDER(vxCondition, mCondition, mMutex, mfSignaled, mfManualReset);
SIZE_ON_32_BITS(vxCondition, 12);
FIELDS_IN_ORDER(vxConditionExt, mCondition, mMutex, mfSignaled, mfDeleteMutex);
SIZE_ON_32_BITS(vxConditionExt, 12);
SIZE_ON_32_BITS(vxSemaphore, 4);

// Threads
FIELDS_IN_ORDER(vxOSThread_Data, mThreadFunc, mDeleteFunc, mThreadArgs, mStackSize, mThreadKind,
                mThreadScheduling);
SIZE_ON_32_BITS(vxOSThread_Data, 24);
FIELDS_IN_ORDER(vxStoppableThread, mThreadKind, mThreadState, mThreadName, mThread,
                mfTerminateRequested);
SIZE_ON_32_BITS(vxStoppableThread, 24);
FIELDS_IN_ORDER(vxMessage, mNext, mMessage, mParam1, mParam2);
SIZE_ON_32_BITS(vxMessage, 16);
FIELDS_IN_ORDER(vxMessageQueue, mMutex, mCondition, mHead, mTail);
SIZE_ON_32_BITS(vxMessageQueue, 20);

// Time-outs and applets
FIELDS_IN_ORDER(vxTimeout, mStart, mDuration);
SIZE_ON_32_BITS(vxTimeout, 20);
SIZE_ON_32_BITS(vxTimeoutQueue, 12);
FIELDS_IN_ORDER(vxApplet, mfaWake, mfChildaWake, mParent, mOptions, mChildren, mLastUpstreamMsg,
                mfHadChild);
FIELDS_IN_ORDER(vxActivityManager, mMutex, mActivityCounter, mfActivity, mTimeVal);
SIZE_ON_32_BITS(vxSelect, 4);

// Broadcasters and listeners
FIELDS_IN_ORDER(vxBroadcaster, mListeners, mfIsBroadcasting);
SIZE_ON_32_BITS(vxBroadcaster, 28);
FIELDS_IN_ORDER(vxListener, mBroadcasters, mfIsListening);
SIZE_ON_32_BITS(vxListener, 28);

// Queries
FIELDS_IN_ORDER(vxQuery, mNextQuery, mQueryManager, mfAutoDelete, mDelay, mEndDelay, mfExecuted);
SIZE_ON_32_BITS(vxQuery, 32);
FIELDS_IN_ORDER(vxQueryManager, mfQueryManagerStopped, mHeadQuery, mTailQuery, mQueryMutex,
                mProcessSemaphore);
SIZE_ON_32_BITS(vxQueryManager, 36);

// Files
FIELDS_IN_ORDER(vxPathName, mPathKind, mPath, mFileName, mExtension, mFullPath);
SIZE_ON_32_BITS(vxPathName, 36);
FIELDS_IN_ORDER(vxFile, mFD, mErrorCode);
FIELDS_IN_ORDER(vxDirEntry, mName, mfDir, mfHidden);
FIELDS_IN_ORDER(vxDir, mPathName, mTraverser, mState, mError);
FIELDS_IN_ORDER(vxFileCacheInfo, mFileSize, mDateTime, mFileName, mState);
FIELDS_IN_ORDER(vxFileCacheManager, mDirPath, mCacheMaxSize, mfOK, mCacheTable, mCacheArray,
                mCurrentCacheSize, mMutex, mFileRemovedCallback, mFileRemovedCallbackData);
FIELDS_IN_ORDER(vxTextFile, mFile, mBuffer, mMaxLineLength, mLineLength, mfNeedLF, mfLineTooBig);

// Configuration
FIELDS_IN_ORDER(vxConfig, mConfigFile);
SIZE_ON_32_BITS(vxConfig, 8);
SIZE_ON_32_BITS(vxConfigConfig, 8);
FIELDS_IN_ORDER(vxConfigMapperInfo, mOptionName, mSectionName, mKeyName, mEntryType, mDefaultValue);
SIZE_ON_32_BITS(vxConfigMapperInfo, 20);
FIELDS_IN_ORDER(vxConfigMapper, mInfo, mPropertyList, mSectionPrefix);
SIZE_ON_32_BITS(vxConfigMapper, 20);
FIELDS_IN_ORDER(vxConfigManager, mConfigConfigFileName, mReadOnlyPath, mReadWritePath,
                mfConfigConfigOK, mfConfigDefaultFallback, mConfigHashTable, mMutex);
FIELDS_IN_ORDER(vxManagedConfig, mConfig, mConfigFileName, mConfigManager);

// Plug-ins and request paths
FIELDS_IN_ORDER(vxPluginHandler, mFunctionNameList, mFunction, mPluginHandle, mFileName, mFilePath,
                mFunctionCount, mfStatic, mfLoaded);
SIZE_ON_32_BITS(vxPluginHandler, 40);
SIZE_ON_32_BITS(vxPluginLoader, 8);
SIZE_ON_32_BITS(vxURIPathParser, 12);

// Object cache
FIELDS_IN_ORDER(vxCachedBase, mState, mTargetState, mLockCount, mContainer, mSize);
FIELDS_IN_ORDER(vxCache, mSizeLimit, mCountLimit, mfIsRunning, mAvailables, mElems);

// Processes
SIZE_ON_32_BITS(vxSingleInstanceChecker, 4);
FIELDS_IN_ORDER(vxBenchMark, mFile, mFileName, mChrono, mLogModule);

// Media infos
FIELDS_IN_ORDER(vxMediaInfo, mTitle, mCreator, mGenre, mAlbumName, mLastModificationTime, mFilePath,
                mCoverArtMimeType, mCoverArtOffset, mCoverArtSize, mCoverArtEncoding,
                mCoverArtEncodedOffset, mDiskTrackNumber, mInfoMap);
SIZE_ON_32_BITS(vxMediaInfo, 96);
FIELDS_IN_ORDER(vxDLNAProfile, mProfile, mMimeType, mExtensions);
SIZE_ON_32_BITS(vxDLNAProfile, 12);

// Search criteria
FIELDS_IN_ORDER(vxExpressionOperand, mOperand, mOperandID, mValueID);
SIZE_ON_32_BITS(vxExpressionOperand, 12);
FIELDS_IN_ORDER(vxRelExpression, mType, mPropertyName, mPropertyID, mOperand, mOperandID,
                mPropertyValue, mPropertyValueDateTime, mPropertyValueInt, mPropertyValueDouble,
                mPropertyType);
FIELDS_IN_ORDER(vxLinearExpression, mType, mExpression, mOperand, mOperandID, mNext);
FIELDS_IN_ORDER(vxCompositeExpression, mType, mExpression);
SIZE_ON_32_BITS(vxCompositeExpression, 12);
FIELDS_IN_ORDER(vxExpressionParser, mfValid, mStr, mRootExpression, mLogicOperands,
                mBinaryOperands);

// Obfuscation
FIELDS_IN_ORDER(vxRC4Key, theState, x, y);
static_assert(sizeof(vxRC4Key) == 258, "258 bytes on every target");

/// Returns the slot that a pointer to a virtual operation names, counted from 0.
template <typename Operation>
int SlotOf(Operation anOperation) {
    static_assert(sizeof(anOperation) == 2 * sizeof(ptrdiff_t), "a pointer to member is two words");
    ptrdiff_t theWords[2];
    memcpy(theWords, &anOperation, sizeof(theWords));
#if defined(__arm__) || defined(__aarch64__)
    const bool theVirtual = (theWords[1] & 1) != 0;
    const ptrdiff_t theOffset = theWords[0];
#else
    const bool theVirtual = (theWords[0] & 1) != 0;
    const ptrdiff_t theOffset = theWords[0] - 1;
#endif
    return theVirtual ? static_cast<int>(theOffset / static_cast<ptrdiff_t>(sizeof(void*))) : -1;
}

// A virtual destructor takes two slots.

TEST(LayoutTest, CountedObjectsNotifyBeforeTheyAreDestroyed) {
    EXPECT_EQ(SlotOf(&vxRefCounted::NotifyRefCountIsNull), 0);
}

TEST(LayoutTest, ListsRemoveAndDetachBehindTheDestructor) {
    EXPECT_EQ(SlotOf(&vxBaseList::Remove), 2);
    EXPECT_EQ(SlotOf(&vxBaseList::Detach), 3);
}

TEST(LayoutTest, EntriesSetThemselvesBehindTheDestructor) {
    EXPECT_EQ(SlotOf(static_cast<void (vxJSONEntry::*)(vxJSON_t*, bool)>(&vxJSONEntry::SetEntry)),
              2);
    EXPECT_EQ(SlotOf(&vxJSONEntry::IsRoot), 3);
    EXPECT_EQ(SlotOf(static_cast<void (vxJSONDocument::*)(vxJSON_t*)>(&vxJSONDocument::SetEntry)),
              4);
}

TEST(LayoutTest, SinksHaveTheirEventsBehindTheDestructor) {
    EXPECT_EQ(SlotOf(&vxISerialize::MapBegin), 2);
    EXPECT_EQ(SlotOf(&vxISerialize::MapKey), 3);
    EXPECT_EQ(SlotOf(&vxISerialize::MapEnd), 4);
    EXPECT_EQ(SlotOf(&vxISerialize::ArrayBegin), 5);
    EXPECT_EQ(SlotOf(&vxISerialize::ArrayItemSeparator), 6);
    EXPECT_EQ(SlotOf(&vxISerialize::ArrayEnd), 7);
    EXPECT_EQ(SlotOf(&vxISerialize::Identifier), 8);
    EXPECT_EQ(SlotOf(static_cast<int (vxISerialize::*)(const char*, bool)>(&vxISerialize::String)),
              9);
    EXPECT_EQ(
        SlotOf(static_cast<int (vxISerialize::*)(const wchar_t*, bool)>(&vxISerialize::String)),
        10);
    EXPECT_EQ(SlotOf(&vxISerialize::Boolean), 11);
    EXPECT_EQ(SlotOf(&vxISerialize::U32), 12);
    EXPECT_EQ(SlotOf(&vxISerialize::S32), 13);
    EXPECT_EQ(SlotOf(&vxISerialize::U64), 14);
    EXPECT_EQ(SlotOf(&vxISerialize::S64), 15);
    EXPECT_EQ(SlotOf(&vxISerialize::Float), 16);
    EXPECT_EQ(SlotOf(&vxISerialize::Null), 17);
}

TEST(LayoutTest, SerializersHaveTheirOperationsBehindTheDestructor) {
    EXPECT_EQ(SlotOf(&vxPropertyListSerializer::Serialize), 2);
    EXPECT_EQ(SlotOf(&vxPropertyListSerializer::SerializeProperty), 3);
    EXPECT_EQ(SlotOf(&vxPropertyListSerializer::SerializeData), 4);
}

TEST(LayoutTest, MediaInfosHaveTheirOperationsBehindTheDestructor) {
    EXPECT_EQ(SlotOf(&vxMediaInfo::GetSerializedInfo), 2);
    EXPECT_EQ(SlotOf(&vxMediaInfo::DeserializeInfo), 3);
    EXPECT_EQ(SlotOf(&vxMediaInfo::GetMediaInfoAsString), 4);
    EXPECT_EQ(SlotOf(&vxMediaInfo::Finalize), 5);
    EXPECT_EQ(SlotOf(&vxMediaInfo::Validate), 6);
}

TEST(LayoutTest, CachedObjectsAddTheirOperationsBehindTheCounted) {
    EXPECT_EQ(SlotOf(&vxCachedBase::Forget), 3);
    EXPECT_EQ(SlotOf(&vxCachedBase::SetWanted), 4);
    EXPECT_EQ(SlotOf(&vxCachedBase::SetNotWanted), 5);
    EXPECT_EQ(SlotOf(&vxCachedBase::OnReadAccess), 6);
    EXPECT_EQ(SlotOf(&vxCachedBase::SetFetching), 7);
    EXPECT_EQ(SlotOf(&vxCachedBase::Fetch), 8);
    EXPECT_EQ(SlotOf(&vxCachedBase::Trash), 9);
    EXPECT_EQ(SlotOf(&vxCachedBase::CancelFetch), 10);
    EXPECT_EQ(SlotOf(&vxCachedBase::GetID), 11);
    EXPECT_EQ(SlotOf(&vxCache::ListenToMessage), 2);
}

TEST(LayoutTest, PluginHandlersFinalizeBehindTheDestructor) {
    EXPECT_EQ(SlotOf(&vxPluginHandler::Finalize), 2);
}

TEST(LayoutTest, PluginLoadersHaveTheirOperationsBehindTheDestructor) {
    EXPECT_EQ(SlotOf(&vxPluginLoader::GetPluginsPath), 2);
    EXPECT_EQ(SlotOf(&vxPluginLoader::LoadPlugins), 3);
    EXPECT_EQ(SlotOf(&vxPluginLoader::LoadPluginsStatic), 4);
    EXPECT_EQ(SlotOf(&vxPluginLoader::UnloadPlugins), 5);
    EXPECT_EQ(SlotOf(&vxPluginLoader::IsPluginActive), 6);
    EXPECT_EQ(SlotOf(&vxPluginLoader::NewPluginHandler), 7);
}

TEST(LayoutTest, ConvertersConvertInTheFirstSlot) {
    EXPECT_EQ(SlotOf(&vxXMLToJSON::ConvertTo), 0);
}

TEST(LayoutTest, ConsoleAppletsAddTheirOperationsBehindTheInheritedOnes) {
    EXPECT_EQ(SlotOf(&vxCLIApplet::HandleCLICommand), 3);
    EXPECT_EQ(SlotOf(&vxCLIApplet::GetCLIAppletID), 4);
    EXPECT_EQ(SlotOf(&vxCLIApplet::Terminate), 5);
}

TEST(LayoutTest, StoppableThreadsHaveTheirOperationsBehindTheDestructor) {
    EXPECT_EQ(SlotOf(&vxStoppableThread::Go), 2);
    EXPECT_EQ(SlotOf(&vxStoppableThread::TestExit), 3);
    EXPECT_EQ(SlotOf(&vxStoppableThread::OnRun), 4);
    EXPECT_EQ(SlotOf(&vxStoppableThread::ThreadCancel), 5);
    EXPECT_EQ(SlotOf(&vxStoppableThread::ThreadSetData), 6);
    EXPECT_EQ(SlotOf(&vxStoppableThread::Entry), 7);
}

TEST(LayoutTest, AppletsAddTheirOperationsBehindThoseOfTheTimeoutQueue) {
    EXPECT_EQ(SlotOf(&vxTimeoutQueue::FirstExpiringTimeout), 2);
    EXPECT_EQ(SlotOf(&vxTimeoutQueue::OnTimeouts), 3);
    EXPECT_EQ(SlotOf(&vxApplet::AppletLoop), 4);
    EXPECT_EQ(SlotOf(&vxApplet::RaiseWakeUpSignal), 5);
    EXPECT_EQ(SlotOf(&vxApplet::WaitWakeUpSignal), 6);
}

TEST(LayoutTest, BroadcastersHaveTheirOperationsBehindTheDestructor) {
    EXPECT_EQ(SlotOf(&vxBroadcaster::AddListener), 2);
    EXPECT_EQ(SlotOf(&vxBroadcaster::RemoveListener), 3);
    EXPECT_EQ(SlotOf(&vxBroadcaster::BroadcastMessage), 4);
    EXPECT_EQ(SlotOf(&vxListener::ListenToMessage), 2);
}

TEST(LayoutTest, QueriesHaveTheirOperationsBeforeTheDestructor) {
    EXPECT_EQ(SlotOf(&vxQuery::Done), 0);
    EXPECT_EQ(SlotOf(&vxQuery::HasBeenExecuted), 1);
}

TEST(LayoutTest, QueryManagersHaveTheirOperationsBehindTheDestructor) {
    EXPECT_EQ(SlotOf(&vxQueryManager::SignalQueryToProcess), 2);
    EXPECT_EQ(SlotOf(&vxQueryManager::InitQuery), 3);
}

TEST(LayoutTest, SearchExpressionsHaveTheirOperationsBehindTheDestructor) {
    EXPECT_EQ(SlotOf(&vxSearchExpression::Display), 2);
    EXPECT_EQ(SlotOf(&vxSearchExpression::GetSearchCriteriaList), 3);
    EXPECT_EQ(SlotOf(&vxSearchExpression::Evaluate), 4);
    EXPECT_EQ(SlotOf(&vxSearchExpression::IsComposite), 5);
    EXPECT_EQ(SlotOf(&vxSearchExpression::IsRel), 6);
    EXPECT_EQ(SlotOf(&vxSearchExpression::IsLinear), 7);
    EXPECT_EQ(SlotOf(&vxSearchExpression::IsSameAs), 8);
    EXPECT_EQ(SlotOf(&vxSearchExpression::GetType), 9);
}

TEST(LayoutTest, ExpressionParsersParseInTheFirstSlot) {
    EXPECT_EQ(SlotOf(&vxExpressionParser::Parse), 0);
    EXPECT_EQ(SlotOf(&vxExpressionParser::GetPropertyID), 1);
    EXPECT_EQ(SlotOf(&vxExpressionParser::OperandSupported), 2);
    EXPECT_EQ(SlotOf(&vxExpressionParser::OperandSupportedForProperty), 3);
    EXPECT_EQ(SlotOf(&vxSearchExpressionEvaluator::Evaluate), 0);
}

}  // namespace
