#include <algorithm>
#include <iterator>
#include <string_view>

#include "components/systemservice/system_service_component.h"
#include "framework/log.h"
#include "framework/text_domain.h"
#include "platform/fixed_text.h"
#include "platform/sysint.h"
#include "platform/webui.h"

namespace {

/// Where the page of a link comes from.
enum class Page {
    kNamed,
    /// The page of the SIM, or that of the SIMs on a device with several.
    kSim,
    /// The carrier's portal.
    kActivation,
};

/// What follows the message of the link text.
enum class Tail { kNothing, kDot, kTitleAndDot, kAddressAndDot };

/// A type of notification that asks the user to go to a page.
struct Link {
    std::string_view type;
    Page page;
    const char* pageId;  ///< of Page::kNamed
    const char* textId;
    Tail tail;
    bool hasExtraText;  ///< a sentence follows the link
};

// Notifications of other types, for example those about roaming, lead to no page.
constexpr Link kLinks[] = {
    {"dataOff", Page::kNamed, "wwan_settings", "webui_app_turnon_text", Tail::kNothing, false},
    {"deviceJoinWiFi", Page::kNamed, "connected_devices", "system_services_view_link_text",
     Tail::kTitleAndDot, false},
    {"deviceJoinUSB", Page::kNamed, "connected_devices", "system_services_view_link_text",
     Tail::kTitleAndDot, false},
    {"deviceJoinEthernet", Page::kNamed, "connected_devices", "system_services_view_link_text",
     Tail::kTitleAndDot, false},
    {"deviceLeave", Page::kNamed, "connected_devices", "system_services_view_link_text",
     Tail::kTitleAndDot, false},
    {"smsReceived", Page::kNamed, "sms", "webui_view_messages_link_text", Tail::kDot, false},
    {"data90", Page::kNamed, "data_usage", "system_services_view_link_text", Tail::kTitleAndDot,
     false},
    {"data100", Page::kNamed, "data_usage", "system_services_view_link_text", Tail::kTitleAndDot,
     false},
    {"uiccLaunchBrowser", Page::kActivation, nullptr, "webui_app_goto_text", Tail::kAddressAndDot,
     false},
    {"simPINLocked", Page::kSim, nullptr, "webui_unlock_sim_text", Tail::kDot, true},
    {"simPUKLocked", Page::kSim, nullptr, "webui_unlock_sim_text", Tail::kDot, true},
    {"simNonQKT", Page::kNamed, "wwan_settings", "webui_set_apn_text", Tail::kDot, true},
    {"noService", Page::kNamed, "wwan_settings", "webui_change_tech_preference_text", Tail::kDot,
     true},
    {"softwareUpdate", Page::kNamed, "software_update", "webui_install_now_text", Tail::kDot, true},
    {"PCO3", Page::kNamed, "pco", "webui_click_here_text", Tail::kDot, true},
    {"PCO5", Page::kNamed, "pco", "webui_click_here_text", Tail::kDot, true},
};

/// Page on which a SIM is unlocked; null if it cannot be read whether the device has several SIMs.
const char* SimPageId() {
    int enabled = 0;
    if (sys_getMultiSimEnabled(&enabled) != SYS_SUCCESS) {
        return nullptr;
    }
    return enabled == 1 ? "sim_manager" : "sim";
}

const char* PageId(const Link& link) {
    return link.page == Page::kSim ? SimPageId() : link.pageId;
}

void AppendTail(Tail tail, const std::string& address, const std::string& title,
                std::string& text) {
    if (tail == Tail::kTitleAndDot) {
        text += title;
    } else if (tail == Tail::kAddressAndDot) {
        text += address;
    }
    if (tail != Tail::kNothing) {
        AppendTranslated(text, "webui_app_dot_text");
    }
}

}  // namespace

void SystemServiceComponent::GetSupplementaryTextForNotification(const std::string& type,
                                                                 std::string& out) {
    KESTAL_SIGNATURE(
        "void SystemServiceComponent::GetSupplementaryTextForNotification(const string&, "
        "std::__cxx11::string&)");
    KESTAL_BEGIN();
    // A comparison of views begins with their lengths, which differ for most types.
    const auto* const link =
        std::find_if(std::begin(kLinks), std::end(kLinks),
                     [view = std::string_view(type)](const Link& row) { return view == row.type; });
    if (link != std::end(kLinks)) {
        std::string address;
        std::string title;
        if (link->page == Page::kActivation) {
            address = KESTAL_ACTIVATION_URL;
        } else if (const char* pageId = PageId(*link); pageId != nullptr) {
            GetPageUrlData(pageId, address, title);
        }
        if (!address.empty()) {
            std::string text = Translated(link->textId);
            AppendTail(link->tail, address, title, text);
            // The complete link text is looked up again, because the catalogue may contain a better
            // wording of the whole. Addresses and texts are HTML already and are not escaped.
            out += "<a href=\"";
            out += address;
            out += "\">";
            AppendTranslated(out, text);
            out += "</a>";
            if (link->hasExtraText) {
                AppendTranslated(out, "system_service_extra_text");
            }
        }
    }
    KESTAL_END();
}

void SystemServiceComponent::GetPageUrlData(const std::string& pageId, std::string& url,
                                            std::string& title) {
    KESTAL_SIGNATURE(
        "void SystemServiceComponent::GetPageUrlData(const string&, std::__cxx11::string&, "
        "std::__cxx11::string&)");
    KESTAL_BEGIN();
    webui_uri_data_t data{};
    if (webui_get_uri_data(pageId.c_str(), &data) == WEBUI_SUCCESS) {
        url = FixedText(data.address);
        title = Translated(FixedTextView(data.titleId));
        KESTAL_DEBUG("page id is %s, url is %s and url title is %s", pageId.c_str(), url.c_str(),
                     title.c_str());
    }
    KESTAL_END();
}
