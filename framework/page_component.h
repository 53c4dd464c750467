#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "framework/answer_tree.h"
#include "framework/page_error.h"

/// Base of every component that answers a page or an API of the web UI. It holds the name of the
/// component's application and the features and configurations that the device has for it, and
/// declares operations whose defaults do nothing. Components outside this service have the same
/// base; for them, the order of its members and virtual operations is fixed, and some of these have
/// no use here.
class PageComponent {
  public:
    PageComponent() = default;
    PageComponent(const PageComponent&) = delete;
    PageComponent& operator=(const PageComponent&) = delete;

    // The order of these operations is fixed. Hook0, Hook2, Hook3 and Hook5 hold positions in the
    // virtual table that only components outside this service use: nothing here calls or overrides
    // them.

    virtual int Hook0(CTPP::CDT& out, const CTPP::CDT& in);
    /// Answers a read operation, the request @p in.
    virtual PageError GetDynamicData(CTPP::CDT& out, const CTPP::CDT& in);
    virtual int Hook2(CTPP::CDT& out, const CTPP::CDT& in);
    virtual void Hook3(CTPP::CDT& out, const CTPP::CDT& in);
    /// Checks a write operation, the request @p in. Returns the number of errors in it.
    virtual int ValidateFormData(const CTPP::CDT& in, CTPP::CDT& out);
    virtual int Hook5(CTPP::CDT& out, const CTPP::CDT& in, CTPP::CDT& errors);
    /// Performs a write operation, the request @p in.
    virtual PageError StoreData(const CTPP::CDT& in, CTPP::CDT& out);
    virtual ~PageComponent() = default;

    /// Loads features, configurations and the address of the help page of the application
    /// @p applicationName; with an empty name, only those that are device-wide. Failures are
    /// logged, and what could be loaded stays loaded.
    void Init(std::string applicationName);

    /// Whether the last Init ran out of memory or caught an exception, so that a further Init may
    /// load more.
    bool WasCutShort() const { return cutShort; }

    /// Fills `features`: name to integer, 0 to 255. Returns the status of the last call of the web
    /// UI configuration library, WEBUI_SUCCESS if it succeeded, or WEBUI_BUFFER_NEEDED if there was
    /// no memory for a list.
    int GetFeatures();

    /// Fills `configurations`: name to text. Returns the same as GetFeatures.
    int GetConfigurations();

    /// Friendly address of the page @p uriId; empty when it is unknown.
    std::string GetURI(const char* uriId) const;

    /// Friendly address of the external page @p uriId; empty when it is unknown.
    std::string GetExternalURI(const char* uriId) const;

    /// The configuration value @p name as a number, 0 if its text is no number; nothing if the
    /// value was not loaded.
    std::optional<INT_64> ConfigurationNumber(const std::string& name) const;

    /// Stores the translation of @p value under @p key of @p tree, or the value itself if the
    /// catalogue has no translation.
    static void SetData(CTPP::CDT& tree, const std::string& key, const std::string& value);
    /// The same; a null pointer counts as the empty text.
    static void SetData(CTPP::CDT& tree, const std::string& key, const char* value);
    /// The same for the decimal text of @p value, which is looked up in the catalogue as well.
    static void SetData(CTPP::CDT& tree, const std::string& key, int value);
    /// Stores the integer 1 for true, 0 for false.
    static void SetData(CTPP::CDT& tree, const std::string& key, bool value);

    /// Whether @p text is "true", "on" or "1" and not "false", "off" or "0". Any other text is
    /// logged and counts as @p defaultValue.
    static bool IsTrue(const std::string& text, bool defaultValue);

    /// Logs the result of the platform call @p callName unless it is 0, the success of the
    /// system-interface SDK. Returns PAGE_ERROR_NONE for 0, PAGE_ERROR_FAILED otherwise. @p hint is
    /// not used.
    static PageError nativeChecker(int result, std::string callName, std::string hint);

    /// Name of the data unit @p unit in the user's language: "b", "Kb", "Mb", "Gb" for bits, "B",
    /// "KB", "MB", "GB" for bytes. Any other unit is logged and returned as it is.
    static std::string ConvertUnitToLanguage(std::string unit);

  protected:
    std::string appName;
    /// Part of the layout, as fieldMap.
    std::uint32_t reserved[2] = {0, 0};
    /// Non-zero: GetConfigurations also loads the device-wide configurations.
    std::uint32_t useCommonConfigurations = 0;
    /// Non-zero: GetFeatures also loads the device-wide features.
    std::uint32_t useCommonFeatures = 0;
    std::string helpUri;
    CTPP::CDT features;
    CTPP::CDT configurations;
    /// Other components of the family use it. It stays, unused in this service, because it is part
    /// of the layout of this class.
    std::map<std::string, int> fieldMap;

  private:
    bool cutShort = false;
};
