#pragma once

#include <span>
#include <string>

#include "components/systemservice/custom_message_cache.h"
#include "framework/page_component.h"
#include "platform/msgbus.h"
#include "platform/notification.h"

/// Answers the operations of the system-service API.
class SystemServiceComponent : public PageComponent {
  public:
    SystemServiceComponent();

    /// Performs the read operation whose name @p in holds under "api". Returns the result of
    /// Dispatch, or PAGE_ERROR_FAILED if no read operation has this name.
    PageError GetDynamicData(CTPP::CDT& out, const CTPP::CDT& in) override;

    /// Checks that @p in holds the name of a write operation under "api". Returns 0 if so.
    /// Otherwise sets "errorDesc" in @p out and returns 1.
    int ValidateFormData(const CTPP::CDT& in, CTPP::CDT& out) override;

    /// Performs the write operation that the last ValidateFormData or GetDynamicData named; @p in
    /// is not read. A failure sets "errorDesc" in @p out.
    PageError StoreData(const CTPP::CDT& in, CTPP::CDT& out) override;

    ~SystemServiceComponent() override = default;

    /// Performs the operation @p api, a ServiceApi, and writes its answer to @p out. Any other
    /// number does nothing and returns PAGE_ERROR_FAILED.
    virtual PageError Dispatch(CTPP::CDT& out, int api);

    /// Starts ("1") or stops ("0") the cellular data call; any other action does nothing.
    PageError PerformConnectAction(const std::string& action);

    /// Writes the status data set to "statusData" of @p out; always PAGE_ERROR_NONE.
    PageError GetStatus(CTPP::CDT& out);

    /// Writes the active notifications to "notificationsList" of @p out, texts translated and
    /// filled, in the order in which they are published. A failure is logged and leaves the list
    /// empty; always PAGE_ERROR_NONE.
    PageError GetNotificationStatus(CTPP::CDT& out);

    /// Appends to @p out, as HTML, the link to the page on which the user can act on a notification
    /// of the type @p type, and the sentence that follows the link. Appends nothing if there is no
    /// such page.
    void GetSupplementaryTextForNotification(const std::string& type, std::string& out);

    /// Looks up the address and the translated title of the page @p pageId. Both arguments stay as
    /// they are if the page is unknown.
    void GetPageUrlData(const std::string& pageId, std::string& url, std::string& title);

  private:
    // Both log in the name of the function with signature.

    /// The active notifications that are published on @p bus; an empty array if they cannot be
    /// read.
    CTPP::CDT ReadNotificationList(const char* signature, MsgbusHandler& bus);

    /// An array of the active ones among @p records.
    CTPP::CDT BuildNotificationList(const char* signature,
                                    std::span<const AnsNotificationRecord> records);

    /// The carrier's texts about software updates, kept from one request to the next.
    CustomMessageCache customMessages;
    /// Name of the operation that GetDynamicData or ValidateFormData was last asked for.
    std::string apiName;
};
