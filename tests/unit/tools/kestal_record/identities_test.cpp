// Which identities are found, and what replaces them.
#include "tools/kestal_record/identities.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>

#include "tools/kestal_record/document_form.h"

namespace {

/// @p text after its own identities have been replaced.
std::string Replaced(const std::string& text) {
    Identities identities;
    identities.LearnFrom(text);
    return identities.Replaced(text);
}

std::string ReplacedAs(const std::string& text, IdentityKind kind) {
    Identities identities;
    identities.Learn(text, kind);
    return identities.Replaced(text);
}

TEST(Identities, AreReplacedByOthersOfTheSameForm) {
    // IMEI and ICCID keep a valid check digit.
    EXPECT_EQ(Replaced("IMEI 490154203237518"), "IMEI 000000000000018");
    EXPECT_EQ(Replaced("4901542032375186"), "0000000000000001");
    EXPECT_EQ(Replaced("IMSI 310480123456789."), "IMSI 001010000000001.");
    EXPECT_EQ(Replaced("89490200001510920012"), "89000000000000000012");
    EXPECT_EQ(Replaced("(89490200001510920012)").size(), 22U);
    EXPECT_EQ(Replaced("+15550123 and +1 555-0123-99"), "+55500001 and +5 550-0000-02");
    EXPECT_EQ(Replaced("(415) 867-5309"), "(555) 000-0001");
    EXPECT_EQ(Replaced("a4:83:e7:12:9f:0b A4-83-E7-12-9F-0B a4:83:e7:12:9f:0c"),
              "02:00:5e:00:00:01 02-00-5E-00-00-01 02:00:5e:00:00:02");
    EXPECT_EQ(Replaced("192.168.8.23:80"), "100.100.0.11:80");
    EXPECT_EQ(Replaced("8.8.8.8 1.1.1.1"), "0.0.0.1 0.0.0.2");
    EXPECT_EQ(Replaced("fe80::1ff:FE23:4567:890a"), "fe80::1");
    EXPECT_EQ(ReplacedAs("Anna's Wi-Fi", IdentityKind::network), "network00001");
    EXPECT_EQ(ReplacedAs("Büro", IdentityKind::network), "net1");
    EXPECT_EQ(ReplacedAs("x", IdentityKind::host), "1");
    EXPECT_EQ(ReplacedAs("ORVANE", IdentityKind::phone), "ident1");
    EXPECT_EQ(ReplacedAs("unknown", IdentityKind::mac), "identi1");
    EXPECT_EQ(ReplacedAs("fe80::1%eth0", IdentityKind::ipv4), "identity0001");
    EXPECT_EQ(ReplacedAs("", IdentityKind::host), "");
}

TEST(Identities, AnAddressIsReplacedByTheSameHoweverItIsWritten) {
    EXPECT_EQ(Replaced("2a02:810D::1 2a02:810d:0:0:0:0:0:1, 2A02:810d:0000::0001/64"),
              "2001:db8::1 2001:db8::1, 2001:db8::1/64");
    EXPECT_EQ(Replaced("FE80:0::A%eth0 fe80::a feb0::a"), "fe80::1%eth0 fe80::1 fe80::2");
    // Neither by another one of the recording.
    EXPECT_EQ(Replaced("fe80::9 FE80::0001 fe80:0:0::2 2001:db8:0::1"),
              "fe80::3 fe80::4 fe80::5 2001:db8::6");
}

TEST(Identities, NamesOfHostsAndMacAddressesAreTheSameInUpperAndLowerCase) {
    Identities identities;
    identities.Learn("Annas-Phone", IdentityKind::host);
    identities.Learn("A483E7129F0B", IdentityKind::mac);
    identities.Learn("Anna", IdentityKind::network);
    EXPECT_EQ(identities.Replaced("annas-phone.lan ANNAS-PHONE Annas-Phone"),
              "host0000001.lan host0000001 host0000001");
    EXPECT_EQ(identities.Replaced("a483e7129f0b"), "02005E000001");
    EXPECT_EQ(identities.Replaced("anna Anna"), "anna net1");
}

TEST(Identities, SessionsAreKnownInTheLog) {
    Identities identities;
    identities.LearnFromLog("[KESTAL]:[DEBUG] - GetLoginStatus: sessionId 5f0c+Q== and sessionId ");
    EXPECT_EQ(identities.Replaced("torusess=5f0c+Q=="), "torusess=identit1");
}

TEST(Identities, InABlockNothingIsMoved) {
    Identities identities;
    identities.LearnFrom("from fd00::7 to fd12:3456:789a::17");
    identities.Learn("Büro", IdentityKind::network);
    const std::string block = "\x02 fd00::7\n Büro\x01 fd12:3456:789a::17";
    const std::string replaced = identities.Replaced(block, TextLayout::block);
    EXPECT_EQ(replaced, "\x02 2001:db\n net1 \x01 2001:db8::2       ");
    EXPECT_EQ(identities.Replaced("fd00::7", TextLayout::block), "2001:db");
    const Json recorded = {
        {"bytes", HexText(std::vector<std::uint8_t>(block.begin(), block.end()))}};
    const Json finished =
        Finished(recorded, [&](const auto& path, const auto& text, TextLayout layout) {
            return identities.ReplacedAt(path, text, layout);
        });
    EXPECT_EQ(finished.at("bytes"),
              HexText(std::vector<std::uint8_t>(replaced.begin(), replaced.end())));
}

TEST(Identities, OtherTextsStay) {
    for (const std::string text : {
             "2026-11-22T21:59:05.123Z kestal.cgi[4711]",
             "PageError StatusComponent::GetData(CTPP::CDT&) - END returning 0",
             "notification_data_90_text",
             "734003200 bytes",
             "127.0.0.1:8080, 0.0.0.0, 255.255.255.0, ::1 and ::",
             "kestal 0.1.0 (1f102383f94d), 1.2.3.4.5",
             "code 983041, 12:34:56",
             "300.1.1.1",
             "1234567890123456789012",
             "+12",
             "\xFF\xFE",
             "",
         }) {
        EXPECT_EQ(Replaced(text), text);
    }
}

TEST(Identities, AreReplacedByTheSameEverywhereOnceTheyAreKnown) {
    Identities identities;
    identities.Learn("annas-phone", IdentityKind::host);
    identities.Learn("Annas-Phone", IdentityKind::host);
    identities.Learn("Anna", IdentityKind::network);
    identities.Learn("ab", IdentityKind::network);
    identities.LearnFrom("call +15550123");
    EXPECT_EQ(identities.Replaced("annas-phone Annas-Phone annas-phones"),
              "host0000001 host0000001 annas-phones");
    EXPECT_EQ(identities.Replaced("Anna, \"Anna\"; Annas Anna_1 Annaé HAnna"),
              "net1, \"net1\"; Annas Anna_1 Annaé HAnna");
    // Short ones are replaced only where they stand alone.
    EXPECT_EQ(identities.Replaced("ab"), "n2");
    EXPECT_EQ(identities.Replaced("ab cd"), "ab cd");
    EXPECT_EQ(identities.Replaced("+15550123"), "+55500001");
    const Json value = {{"Anna", Json::array({"for Anna", 5, nullptr, true})}};
    EXPECT_EQ(identities.ReplacedIn(value).dump(), R"({"Anna":["for net1",5,null,true]})");
}

TEST(Identities, OfADocumentAndOfAScenarioAreKnownByTheSamePlaces) {
    Identities identities;
    identities.LearnFromRecording(
        {{"set", {{"webui.commonConfigurations.WifiSSID", RawText("Anna", 50)}}},
         {"webui.appConfigurations", {{"sim.UserName", RawText("on", 50)}}}});
    const auto replaced = [&](const std::vector<std::string>& path) {
        return identities.ReplacedAt(path, "Anna");
    };
    EXPECT_EQ(replaced({"events", "1", "set", "webui.commonConfigurations.WifiSSID"}), "net1");
    EXPECT_EQ(replaced({"events", "1", "set", "webui.commonConfigurations", "net.SSID"}), "net1");
    EXPECT_EQ(replaced({"sys", "getGpioPin1CustomSettings", "name"}), "net1");
    EXPECT_EQ(replaced({"events", "1", "set", "webui.i18nSettings.language"}), "Anna");
    EXPECT_EQ(replaced({"events", "1", "set", "webui.externalUriData.support"}), "Anna");
    EXPECT_EQ(replaced({"events", "1", "set", "webui.uriData", "sms", "titleId"}), "Anna");
    EXPECT_EQ(replaced({"events", "1", "set", "msgbus.a.b", "0", "category"}), "Anna");
    EXPECT_EQ(replaced({"events", "1", "set", "webui.softwareUpdateStatus.version"}), "Anna");
    EXPECT_EQ(identities.ReplacedAt({"webui", "appConfigurations", "sim", "UserName"}, "on"), "i1");
    EXPECT_EQ(identities.ReplacedAt({"webui", "commonConfigurations", "Mode"}, "on"), "on");
}

TEST(Identities, NoReplacementIsAnotherIdentityOfTheRecording) {
    Identities identities;
    const std::vector<std::string> all = {"310480123456789", "001010000000001", "001010000000002"};
    std::vector<std::string> replaced;
    for (const std::string& one : all) {
        identities.Learn(one, IdentityKind::subscriber);
    }
    for (const std::string& one : all) {
        replaced.push_back(identities.Replaced(one));
    }
    EXPECT_EQ(replaced,
              (std::vector<std::string>{"001010000000003", "001010000000004", "001010000000005"}));
}

TEST(Identities, EveryAddressOfAFormHasItsOwnReplacement) {
    Identities identities;
    std::vector<std::string> all;
    for (int last = 0; last < 256; ++last) {
        all.push_back("192.168.8." + std::to_string(last));
        identities.Learn(all.back(), IdentityKind::ipv4);
    }
    std::set<std::string> replaced;
    for (const std::string& one : all) {
        const std::string other = identities.Replaced(one);
        EXPECT_EQ(other.size(), one.size());
        EXPECT_EQ(KindOf(other, IdentityKind::other), IdentityKind::ipv4) << other;
        replaced.insert(other);
    }
    EXPECT_EQ(replaced.size(), all.size());
}

TEST(Identities, OfSourcesAreKnownByTheirPlace) {
    Identities identities;
    const Json sources = Json::parse(R"([
        {"name": "clients", "state": "present",
         "said": [{"mac": "a4:83:e7:12:9f:0b", "kind": 0, "address": "", "name": "laptop"}]},
        {"name": "wifi", "said": {"wlan0": {"network": "Lab Box", "state": "ENABLED"}}},
        {"name": "messages", "said": [{"sender": "Bank", "text": "Code 1234", "key": "9f86d0"}]},
        {"name": "modem", "said": {"network": "Lab Net", "subscriber": "001019876"}},
        {"name": "position", "state": "lost", "reason": "192.168.8.1: no answer"}
    ])");
    identities.LearnFromSources(sources);
    EXPECT_EQ(identities.Replaced("laptop in Lab Box: Code 1234 from Bank; 9f86d0"),
              "host01 in networ1: message01 from ide1; ident2");
    EXPECT_EQ(identities.Replaced("Lab Net ENABLED"), "Lab Net ENABLED");
    EXPECT_EQ(identities.Replaced("001019876 192.168.8.1"), "001010001 100.100.0.1");
}

}  // namespace
