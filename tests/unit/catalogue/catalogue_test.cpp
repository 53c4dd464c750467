#include <gtest/gtest.h>
#include <libintl.h>

#include <clocale>
#include <cstdlib>
#include <ostream>
#include <string>

#include "bindings/recording/recording.h"
#include "components/systemservice/system_service_component.h"
#include "framework/text_domain.h"
#include "tests/support/json.h"

using recording::Given;

namespace {

CTPP::CDT Api(const std::string& name) {
    CTPP::CDT in;
    in["api"] = name;
    return in;
}

class CatalogueTest : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        // Must be set before the first locale is read.
        ASSERT_EQ(setenv("LOCPATH", KESTAL_LOCALES, 1), 0);
        ASSERT_EQ(unsetenv("LANGUAGE"), 0);
        ASSERT_NE(bindtextdomain(kTextDomain, KESTAL_CATALOGUE), nullptr);
        ASSERT_NE(bind_textdomain_codeset(kTextDomain, "UTF-8"), nullptr);
    }

    void SetUp() override {
        recording::Reset();
        ASSERT_NE(std::setlocale(LC_MESSAGES, "C"), nullptr);
    }

    static bool Speak(const char* language) {
        return std::setlocale(LC_MESSAGES, language) != nullptr;
    }

    /// The text for the client about an operation that cannot be stored.
    std::string Unsupported() {
        CTPP::CDT out;
        component.ValidateFormData(Api("reboot"), out);
        return ToJson(out);
    }

    /// The text for the client when the data call cannot be started.
    std::string Failed() {
        Given("sys_cellularDataConnect").Returns(77);
        CTPP::CDT out;
        component.ValidateFormData(Api("connect"), out);
        component.StoreData(Api("connect"), out);
        return ToJson(out);
    }

    SystemServiceComponent component;
};

struct Language {
    const char* name;
    const char* unreadMessages;
};

void PrintTo(const Language& language, std::ostream* out) {
    *out << language.name;
}

class EachLanguageTest : public CatalogueTest, public testing::WithParamInterface<Language> {};

TEST_P(EachLanguageTest, TextsAreCompleteAndInUtf8) {
    ASSERT_TRUE(Speak(GetParam().name));
    EXPECT_EQ(Translated("notification_sms_received_text"), GetParam().unreadMessages);
}

TEST_P(EachLanguageTest, EmptyIdGivesAnEmptyText) {
    ASSERT_TRUE(Speak(GetParam().name));
    ASSERT_NE(Translated("webui_product_name"), "webui_product_name");
    EXPECT_EQ(Translated(""), "");
}

TEST_F(CatalogueTest, CharacterSetOfTheLocaleChangesNoText) {
    ASSERT_TRUE(Speak("ja_JP.eucJP"));
    EXPECT_EQ(Translated("notification_sms_received_text"), "未読メッセージ：%3件。");
}

TEST_P(EachLanguageTest, UnknownIdIsItsOwnText) {
    ASSERT_TRUE(Speak(GetParam().name));
    EXPECT_EQ(Translated("nobody_translates_this_text"), "nobody_translates_this_text");
}

INSTANTIATE_TEST_SUITE_P(Country, EachLanguageTest,
                         testing::Values(Language{"en_US", "Unread messages: %3. "},
                                         Language{"de_DE", "Ungelesene Nachrichten: %3. "},
                                         Language{"fr_FR", "Messages non lus\u00a0: %3. "},
                                         Language{"es_ES", "Mensajes sin leer: %3. "},
                                         Language{"ja_JP", "未読メッセージ：%3件。"},
                                         Language{"ar_EG", "الرسائل غير المقروءة: %3. "}),
                         [](const auto& instance) { return std::string(instance.param.name); });

INSTANTIATE_TEST_SUITE_P(CodeAlone, EachLanguageTest,
                         testing::Values(Language{"de", "Ungelesene Nachrichten: %3. "},
                                         Language{"fr", "Messages non lus\u00a0: %3. "},
                                         Language{"es", "Mensajes sin leer: %3. "},
                                         Language{"ja", "未読メッセージ：%3件。"},
                                         Language{"ar", "الرسائل غير المقروءة: %3. "}),
                         [](const auto& instance) { return std::string(instance.param.name); });

TEST_F(CatalogueTest, UnsupportedOperationIsReportedInTheLanguageOfTheRequest) {
    ASSERT_TRUE(Speak("en_US"));
    EXPECT_EQ(Unsupported(), R"({"errorDesc":"This operation is not supported."})");
    ASSERT_TRUE(Speak("de_DE"));
    EXPECT_EQ(Unsupported(), R"({"errorDesc":"Dieser Vorgang wird nicht unterstützt."})");
    ASSERT_TRUE(Speak("en_US"));
    EXPECT_EQ(Unsupported(), R"({"errorDesc":"This operation is not supported."})");
}

TEST_F(CatalogueTest, FailedOperationIsReportedInTheLanguageOfTheRequest) {
    ASSERT_TRUE(Speak("fr_FR"));
    EXPECT_EQ(Failed(), R"({"errorDesc":"L’opération a échoué."})");
    ASSERT_TRUE(Speak("ja_JP"));
    EXPECT_EQ(Failed(), R"({"errorDesc":"操作に失敗しました。"})");
}

TEST_F(CatalogueTest, UnknownReadOperationHasNoErrorText) {
    ASSERT_TRUE(Speak("de_DE"));
    CTPP::CDT out;
    EXPECT_EQ(component.GetDynamicData(out, Api("reboot")), PAGE_ERROR_FAILED);
    EXPECT_EQ(out.GetType(), CTPP::CDT::UNDEF);
}

TEST_F(CatalogueTest, LanguageWithoutLocaleLeavesTheFormerOneInForce) {
    ASSERT_TRUE(Speak("es_ES"));
    EXPECT_FALSE(Speak("tlh_AQ"));
    EXPECT_EQ(Unsupported(), R"({"errorDesc":"Esta operación no es compatible."})");
}

TEST_F(CatalogueTest, WithoutALanguageTheTextIsTheMessageId) {
    EXPECT_EQ(Unsupported(), R"({"errorDesc":"system_service_unsupport_operation_error_text"})");
}

}  // namespace
