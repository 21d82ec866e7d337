// The table knows configurations without holding them. One whose last handle goes leaves the table in
// its destructor, some time later: until then its count of 0 says that it must not be handed out, and
// another one may have taken its place in the table, which then stays.
//
// Strings are not shared with callers, who may use theirs in other threads.

#include "vx/ConfigManager.h"

#include "vx/ConfigMapper.h"

vxManagedConfig::vxManagedConfig(const vxRef<vxConfigManager>& aManager, const vxCString& aFileName,
                                 vxConfig* aConfig)
    : mConfig(aConfig), mConfigFileName(aFileName.c_str()), mConfigManager(aManager) {}

vxManagedConfig::~vxManagedConfig() {
    mConfigManager->Release(mConfigFileName, this);
    delete mConfig;
}

vxConfig* vxManagedConfig::Lock(vxConfigFile** aFile) {
    mConfigManager->Lock(true);
    if (aFile != NULL) {
        *aFile = mConfig == NULL ? NULL : mConfig->GetConfigFile();
    }
    return mConfig;
}

bool vxManagedConfig::Unlock(bool afSave) {
    const bool theResult = !afSave || (mConfig != NULL && mConfig->Save());
    mConfigManager->Lock(false);
    return theResult;
}

bool vxManagedConfig::Save() {
    Lock(NULL);
    return Unlock(true);
}

void vxManagedConfig::LoadMapper(vxConfigMapper& aMapper, const vxConfigMapperInfo* aTable) {
    aMapper.Load(aTable, Lock(NULL));
    Unlock(false);
}

vxConfigManager::vxConfigManager(const char* aConfigConfigFileName)
    : mConfigConfigFileName(aConfigConfigFileName),
      mfConfigConfigOK(false),
      mfConfigDefaultFallback(false),
      mConfigHashTable(vxCustomHashTable_New_String_Other(NULL)) {
    mfConfigConfigOK =
        vxConfigConfig::GetConfigPaths(mReadOnlyPath, mReadWritePath, mConfigConfigFileName);
}

vxConfigManager::~vxConfigManager() {
    vxCustomHashTable_Delete(mConfigHashTable);
}

void vxConfigManager::SetDefaultFallback(bool afFallback) {
    vxMutexLocker theLock(&mMutex);
    mfConfigDefaultFallback = afFallback;
}

vxRef<vxManagedConfig> vxConfigManager::GetConfig(const vxCString& aFileName) {
    vxMutexLocker theLock(&mMutex);
    vxRef<vxManagedConfig> theResult;
    vxManagedConfig* theConfig =
        static_cast<vxManagedConfig*>(vxCustomHashTable_Get(mConfigHashTable, aFileName));
    if (theConfig != NULL && theConfig->RetainIfHeld(&theResult)) {
        theResult._SetPointedObject(theConfig);
        return theResult;
    }
    theResult = AddManagedConfig(aFileName);
    return theResult;
}

vxManagedConfig* vxConfigManager::AddManagedConfig(const char* aFileName) {
    vxConfig* theConfig = NULL;
    if (mfConfigConfigOK) {
        theConfig = new vxConfig(mReadOnlyPath, mReadWritePath, aFileName);
    } else if (mfConfigDefaultFallback) {
        theConfig = new vxConfig;
    } else {
        return NULL;
    }
    vxManagedConfig* theManaged = new vxManagedConfig(this, aFileName, theConfig);
    vxCustomHashTable_Add(mConfigHashTable, aFileName, theManaged);
    return theManaged;
}

void vxConfigManager::LoadMapper(vxConfigMapper& aMapper, const vxCString& aFileName,
                                 const vxConfigMapperInfo* aTable) {
    const vxRef<vxManagedConfig> theConfig = GetConfig(aFileName);
    if (theConfig.IsNull()) {
        aMapper.Load(aTable, NULL);
    } else {
        theConfig->LoadMapper(aMapper, aTable);
    }
}

void vxConfigManager::Lock(bool afLock) {
    if (afLock) {
        mMutex.Lock();
    } else {
        mMutex.Unlock();
    }
}

void vxConfigManager::Release(const vxCString& aFileName) {
    vxMutexLocker theLock(&mMutex);
    vxCustomHashTable_Remove(mConfigHashTable, aFileName);
}

void vxConfigManager::Release(const vxCString& aFileName, const vxManagedConfig* aConfig) {
    vxMutexLocker theLock(&mMutex);
    vxCustomHashTable_RemoveValue(mConfigHashTable, aFileName, aConfig);
}
