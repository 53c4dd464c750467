#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "framework/answer_tree.h"
#include "framework/page_error.h"

/// Base of every component that answers a page or an API of the web UI: its identity, the device's
/// feature switches and configuration values for it, and operations with harmless defaults.
class PageComponent {
  public:
    PageComponent() = default;
    PageComponent(const PageComponent&) = delete;
    PageComponent& operator=(const PageComponent&) = delete;

    // The order of the virtual operations is part of the interface of the component family.

    virtual int Hook0(CTPP::CDT& out, const CTPP::CDT& in);
    virtual PageError GetDynamicData(CTPP::CDT& out, const CTPP::CDT& in);
    virtual int Hook2(CTPP::CDT& out, const CTPP::CDT& in);
    virtual void Hook3(CTPP::CDT& out, const CTPP::CDT& in);
    /// Returns the number of validation errors in @p in.
    virtual int ValidateFormData(const CTPP::CDT& in, CTPP::CDT& out);
    virtual int Hook5(CTPP::CDT& out, const CTPP::CDT& in, CTPP::CDT& errors);
    virtual PageError StoreData(const CTPP::CDT& in, CTPP::CDT& out);
    virtual ~PageComponent() = default;

    /// Loads features, configurations and the address of the help page of the application
    /// @p applicationName; an empty name loads only what is device-wide. Failures are logged, and
    /// what could be loaded stays loaded.
    void Init(std::string applicationName);

    /// Whether the last Init lacked memory, or was thrown something, and another may load more.
    bool WasCutShort() const { return cutShort; }

    /// Fills `features`: name to integer, 0 to 255. Returns the last status of the web UI
    /// configuration library, WEBUI_SUCCESS when all went well; WEBUI_BUFFER_NEEDED stands for a
    /// lack of memory, too.
    int GetFeatures();

    /// Fills `configurations`: name to text. Returns as GetFeatures.
    int GetConfigurations();

    /// Friendly address of the page @p uriId; empty when it is unknown.
    std::string GetURI(const char* uriId) const;

    /// Friendly address of the external page @p uriId; empty when it is unknown.
    std::string GetExternalURI(const char* uriId) const;

    /// Number in the configuration value @p name (0 when it is no number); nothing when the value
    /// was not loaded.
    std::optional<INT_64> ConfigurationNumber(const std::string& name) const;

    /// Stores the translation of @p value under @p key of @p tree; the value itself when the
    /// catalogue has none.
    static void SetData(CTPP::CDT& tree, const std::string& key, const std::string& value);
    /// The same; null is the empty text.
    static void SetData(CTPP::CDT& tree, const std::string& key, const char* value);
    /// The same for the decimal text of @p value, which goes through the catalogue as well.
    static void SetData(CTPP::CDT& tree, const std::string& key, int value);
    /// Stores 1 or 0.
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
    std::uint32_t reserved[2] = {0, 0};
    /// Non-zero: GetConfigurations also loads the device-wide configurations.
    std::uint32_t useCommonConfigurations = 0;
    /// Non-zero: GetFeatures also loads the device-wide features.
    std::uint32_t useCommonFeatures = 0;
    std::string helpUri;
    CTPP::CDT features;
    CTPP::CDT configurations;
    /// For other components of the family; not used in this service.
    std::map<std::string, int> fieldMap;

  private:
    bool cutShort = false;
};
