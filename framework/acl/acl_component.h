#pragma once

#include <map>
#include <string>

#include "framework/answer_tree.h"

/// What the carrier allows in the web UI: which input fields of a page are shown and which are
/// read-only. It has no caller in this service, which answers no pages; it is part of the framework
/// for the components that do.
class AclComponent {
  public:
    /// Reads whether @p field is shown and whether it is locked (read-only), and stores that under
    /// three keys: @p keyBase followed by "Show", "Locked" and "HideOrLocked". A field whose
    /// settings cannot be read is shown and not locked, unless the failed call has written a value.
    void LoadOneAclSetting(const std::string& field, const std::string& keyBase);

    /// Writes everything that is stored to @p node, as 1 or 0, in the order of the keys.
    void PopulateAclSettings(CTPP::CDT& node);

    /// What is stored under @p key. For an unknown key, stores false and returns it.
    bool GetFieldStatus(const std::string& key);

    /// Stores the platform's display and write settings of the application @p app in @p hidden and
    /// @p locked; 0 in both if the carrier uses neither of its agents. Either pointer may be null
    /// if the caller does not want that result.
    void GetAppLevelAclSetting(char* app, int* hidden, int* locked);

    /// Writes whether @p field is shown and whether it is locked to @p node, as the numbers that
    /// the platform gives, under the field's name followed by "Show" and "Locked". A field that the
    /// device (@p featureSupport) or the page (@p uiSupport) does not support is hidden and locked.
    void GenerateFieldACLData(CTPP::CDT& node, std::string field, bool featureSupport,
                              bool uiSupport);

  private:
    std::map<std::string, bool> settings;
};
