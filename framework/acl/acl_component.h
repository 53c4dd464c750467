#pragma once

#include <map>
#include <string>

#include "framework/answer_tree.h"

/// What the carrier allows in the web UI: which input fields are shown and which are read-only,
/// collected for a page.
class AclComponent {
  public:
    /// Reads whether @p field is shown and locked and remembers it under @p keyBase with "Show",
    /// "Locked" and "HideOrLocked" behind it. A field whose settings cannot be read is shown and
    /// not locked, unless the failed call has written a value.
    void LoadOneAclSetting(const std::string& field, const std::string& keyBase);

    /// Writes everything that is remembered to @p node, 1 or 0 each, in the order of the keys.
    void PopulateAclSettings(CTPP::CDT& node);

    /// What is remembered under @p key. An unknown key reads as false and is remembered so.
    bool GetFieldStatus(const std::string& key);

    /// Stores the platform's display and write settings of the application @p app in @p hidden and
    /// @p locked; 0 for both when the carrier uses neither of its agents. A null pointer leaves its
    /// result out.
    void GetAppLevelAclSetting(char* app, int* hidden, int* locked);

    /// Writes whether @p field is shown and locked, the platform's values as they are, to @p node
    /// under the field's name with "Show" and "Locked" behind it. A field that the device
    /// (@p featureSupport) or the page (@p uiSupport) does not support is hidden and locked.
    void GenerateFieldACLData(CTPP::CDT& node, std::string field, bool featureSupport,
                              bool uiSupport);

  private:
    std::map<std::string, bool> settings;
};
