#pragma once

#include <libteskTools/HashTable.h>

#include "vx/Api.h"
#include "vx/CString.h"
#include "vx/Config.h"
#include "vx/Mutex.h"
#include "vx/Ref.h"

class vxConfigManager;
class vxConfigMapper;
struct vxConfigMapperInfo;

/// A configuration that the components of a process share, under the mutex of its manager.
///
///     vxRef<vxManagedConfig> theManaged = theManager->GetConfig("player.ini");
///     theManaged->Lock(NULL)->SetString("Server", "Name", "Kitchen");
///     theManaged->Unlock(true);
///
/// Every use of the configuration stands between Lock() and Unlock(). All configurations of a manager
/// share one mutex: who locks one keeps the others waiting, too.
///
/// Owner:    its handles; it holds its manager. Unlock before the last handle goes.
/// Threads:  any, guarded by the manager's mutex.
class VX_EXPORT vxManagedConfig : public vxRefCounted {
public:
    /// Owner:    takes `aConfig` over; it may be null.
    vxManagedConfig(const vxRef<vxConfigManager>& aManager, const vxCString& aFileName,
                    vxConfig* aConfig);

    /// Leaves the manager's table, and closes the configuration; unsaved changes are lost.
    ~vxManagedConfig() override;

    vxManagedConfig(const vxManagedConfig&) = delete;
    vxManagedConfig& operator=(const vxManagedConfig&) = delete;

    /// Locks the mutex and returns the configuration. `aFile`, unless null, receives the platform's
    /// handle, or null.
    ///
    /// Owner:    this object; to be used until Unlock().
    vxConfig* Lock(vxConfigFile** aFile);

    /// Saves if `afSave` is set, then unlocks the mutex, whatever came of it.
    ///
    /// Fails:    false when saving fails, or when there is no configuration to save.
    bool Unlock(bool afSave);

    /// Saves under the mutex.
    ///
    /// Fails:    as Unlock().
    bool Save();

    /// Loads the mapper from the configuration, under the mutex.
    void LoadMapper(vxConfigMapper& aMapper, const vxConfigMapperInfo* aTable);

private:
    vxConfig* mConfig;                      // owned, or null
    vxCString mConfigFileName;              // its key in the manager's table; shared with nobody
    vxRef<vxConfigManager> mConfigManager;  // never null
};

/// Hands out one shared configuration per file name.
///
/// The bootstrap configuration tells where the files lie, see vxConfigConfig. Who asks twice for one
/// name gets one object, as long as somebody holds it; afterwards the file is opened again. Names
/// are compared as texts: "a.ini" and "./a.ini" are two.
///
/// Owner:    its handles, and its configurations. Keep a handle from the start: a manager that no
///           handle holds is destroyed by the first configuration that lets go of it.
/// Threads:  any, guarded by mMutex.
class VX_EXPORT vxConfigManager : public vxRefCounted {
public:
    /// Finds the directories and makes them where they do not exist; failure is logged, and
    /// GetConfig() then gives nothing.
    explicit vxConfigManager(const char* aConfigConfigFileName);
    ~vxConfigManager() override;

    vxConfigManager(const vxConfigManager&) = delete;
    vxConfigManager& operator=(const vxConfigManager&) = delete;

    /// Chooses what GetConfig() gives where the directories cannot be used: nothing, as at first, or a
    /// configuration without a file, which gives defaults and stores nothing.
    void SetDefaultFallback(bool afFallback);

    /// Returns the shared configuration of a file; null where there is none to be had.
    vxRef<vxManagedConfig> GetConfig(const vxCString& aFileName);

    /// Loads the mapper from the configuration of a file; the defaults where there is none to be had.
    void LoadMapper(vxConfigMapper& aMapper, const vxCString& aFileName,
                    const vxConfigMapperInfo* aTable);

    /// Locks or unlocks the mutex that guards every configuration.
    void Lock(bool afLock);

    /// Forgets the shared configuration of a file: the next GetConfig() opens it again.
    void Release(const vxCString& aFileName);

private:
    friend class vxManagedConfig;

    vxManagedConfig* AddManagedConfig(const char* aFileName);
    void Release(const vxCString& aFileName, const vxManagedConfig* aConfig);

    vxCString mConfigConfigFileName;
    vxCString mReadOnlyPath;
    vxCString mReadWritePath;
    bool mfConfigConfigOK;                // the directories exist
    bool mfConfigDefaultFallback;         // see SetDefaultFallback()
    vxCustomHashTable* mConfigHashTable;  // owned: live vxManagedConfig by name, borrowed
    vxMutex mMutex;                       // guards the table and every configuration in it
};
