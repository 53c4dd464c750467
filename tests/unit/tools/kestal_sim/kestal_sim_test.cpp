// kestal-sim, as it is run from a shell.
#include <sys/stat.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>

#include "bindings/posix/session/session_store.h"
#include "tests/support/scratch.h"

namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using ::testing::StartsWith;

class SimCommand : public SimulatedDevice {
  protected:
    SimCommand() { Document(kDocument); }

    static constexpr const char* kDocument =
        "{\n"
        "    \"sys\": {\n"
        "        \"getSIMStatus\": 7,\n"
        "\n"
        "        \"getBatteryStatus\": {\"chargePercent\": 84, \"chargingState\": 1}\n"
        "    },\n"
        "    \"webui\": {\"i18nSettings\": {\"language\": \"en_US\"}}\n"
        "}\n";

    /// Runs the command; returns the exit code and the output of both streams.
    static std::string Run(const std::string& arguments) {
        const std::string command = std::string(KESTAL_SIM_COMMAND) + " " + arguments + " 2>&1";
        std::FILE* pipe = popen(command.c_str(), "r");
        EXPECT_NE(pipe, nullptr);
        std::string output;
        std::array<char, 4096> bytes{};
        std::size_t size = 0;
        while ((size = std::fread(bytes.data(), 1, bytes.size(), pipe)) > 0) {
            output.append(bytes.data(), size);
        }
        return std::to_string(WEXITSTATUS(pclose(pipe))) + " " + output;
    }

    /// The document with one text replaced by another.
    static std::string With(const std::string& before, const std::string& after) {
        std::string text = kDocument;
        return text.replace(text.find(before), before.size(), after);
    }
};

TEST_F(SimCommand, ShowsTheDocumentAndItsParts) {
    EXPECT_EQ(Run("show sys.getSIMStatus"), "0 7\n");
    EXPECT_EQ(Run("show getBatteryStatus"), "0 {\"chargePercent\": 84, \"chargingState\": 1}\n");
    EXPECT_EQ(Run("show webui.i18nSettings.language"), "0 \"en_US\"\n");
    EXPECT_EQ(Run("show"),
              "0 {\n"
              "    \"sys\": {\"getSIMStatus\": 7, \"getBatteryStatus\": {\"chargePercent\": 84, "
              "\"chargingState\": 1}},\n"
              "    \"webui\": {\"i18nSettings\": {\"language\": \"en_US\"}}\n"
              "}\n");
    EXPECT_THAT(Run("show --paths"), StartsWith("0 sys\nsys.getSIMStatus\nsys.getBatteryStatus\n"
                                                "sys.getBatteryStatus.chargePercent\n"));
    EXPECT_EQ(Run("show sys.getGPSStatus"),
              "1 kestal-sim: sys.getGPSStatus: not in the document\n");
    EXPECT_EQ(Run("show sys.getSIMState"),
              "1 kestal-sim: sys.getSIMState: expected the name of a call, found an unknown name; "
              "did you mean sys.getSIMStatus?\n");
}

TEST_F(SimCommand, SetsJsonValuesAndTexts) {
    EXPECT_EQ(Run("set sys.getBatteryStatus.chargePercent 9"), "0 ");
    EXPECT_EQ(ReadFile(device), With("84", "9"));
    EXPECT_EQ(Run("set sys.getBatteryStatus.chargePercent 84"), "0 ");
    EXPECT_EQ(Run("set webui.i18nSettings.language de_DE"), "0 ");
    EXPECT_EQ(ReadFile(device), With("en_US", "de_DE"));
    EXPECT_EQ(Run("set webui.i18nSettings.language '\"12\"'"), "0 ");
    EXPECT_EQ(Run("set webui.i18nSettings '{\"language\": \"\"}'"), "0 ");
    EXPECT_EQ(Run("set sys.getSIMStatus -3"), "0 ");
    EXPECT_EQ(Run("set sys.getConnectedDeviceList '[]'"), "0 ");
    EXPECT_EQ(Run("show sys.getConnectedDeviceList"), "0 []\n");
}

TEST_F(SimCommand, RefusesWhatTheReaderRefuses) {
    EXPECT_EQ(Run("set sys.getSIMStatus redy"),
              "1 kestal-sim: sys.getSIMStatus: expected not_found, locked, restricted, error, "
              "failure, puk_locked, pin_locked, ready or a 32-bit integer or {\"error\": N}, found "
              "'redy'; did you mean ready?\n");
    EXPECT_EQ(Run("set sys.getBatteryStatus.chargePercnt 9"),
              "1 kestal-sim: sys.getBatteryStatus.chargePercnt: expected one of chargePercent, "
              "chargingState, detection, chargingSource, found an unknown name; did you mean "
              "sys.getBatteryStatus.chargePercent?\n");
    EXPECT_EQ(Run("set sys.getBatteryStatus '{\"chargePercent\": 1, \"chargePercent\": 2}'"),
              "1 kestal-sim: the value: chargePercent: expected once, found twice\n");
    EXPECT_EQ(Run("set webui.i18nSettings.language \"$(printf '\\377')\""),
              "1 kestal-sim: a document can hold texts in UTF-8 only\n");
    EXPECT_EQ(Run("fail sys.getSIMStatus 0"),
              "1 kestal-sim: sys.getSIMStatus.error: expected a 32-bit integer other than 0 and "
              "983040, found 0\n");
    EXPECT_THAT(Run("fail sys.getSIMStatus no_sd_card"),
                EndsWith(" or a 32-bit integer other than 0 and 983040, found 'no_sd_card'; did "
                         "you mean error_no_sd_card?\n"));
    EXPECT_THAT(Run("fail webui.i18nSettings error_no_sd_card"),
                HasSubstr("webui.i18nSettings.error: expected buffer_needed, not_answered, "));
    EXPECT_THAT(Run("fail sys.getSIMStatus 2147483648"), EndsWith(", found 2147483648\n"));
    EXPECT_EQ(Run("fail getSIMStats 5"),
              "1 kestal-sim: there is no call 'getSIMStats'; did you mean getSIMStatus?\n");
    EXPECT_EQ(Run("heal sys.getSIMStats"),
              "1 kestal-sim: sys.getSIMStats: expected the name of a call, found an unknown name; "
              "did you mean sys.getSIMStatus?\n");
    EXPECT_EQ(Run("notify noServce"),
              "1 kestal-sim: there is no type of notification 'noServce', and for one of your own "
              "these are missing: category, severity, labelId, titleId, textId; did you mean "
              "noService?\n");
    EXPECT_EQ(Run("notify noService --severity high"),
              "1 kestal-sim: expected info, warning, alert, critical or an unsigned 32-bit integer "
              "for the severity, found 'high'\n");
    EXPECT_THAT(Run("notify noService --severity critcal"),
                EndsWith(", found 'critcal'; did you mean critical?\n"));
    for (const std::string wrong :
         {"sys", "sys.getBatteryStatus.chargePercent", "sys.getConnectedDeviceList[0]",
          "webui.i18nSettings.language"}) {
        const std::string told =
            "1 kestal-sim: " + wrong + ": this is not a call, a page or a channel\n";
        EXPECT_EQ(Run("fail '" + wrong + "' 5"), told);
        EXPECT_EQ(Run("heal '" + wrong + "'"), told);
    }
    EXPECT_EQ(ReadFile(device), kDocument);
}

TEST_F(SimCommand, RecordsTheDeviceAsADocument) {
    const std::string file = (directory / "recorded.json").string();
    EXPECT_EQ(Run("record " + file), "0 ");
    EXPECT_EQ(Run("--device " + file + " show getSIMStatus"), "0 \"ready\"\n");
    EXPECT_EQ(Run("--device " + file + " show getGPSStatus"), "0 {\"error\": \"not_answered\"}\n");
    EXPECT_EQ(Run("record " + file),
              "1 kestal-sim: " + file + ": exists already; --force replaces it\n");
    EXPECT_EQ(Run("record --force " + file), "0 ");
    EXPECT_EQ(Run("record"), "2 kestal-sim: FILE is required\nTry 'kestal-sim --help'.\n");
    EXPECT_EQ(Run("record --every 1s " + file),
              "2 kestal-sim: --every requires --for\nTry 'kestal-sim --help'.\n");
    EXPECT_THAT(Run("record --help"), HasSubstr("--keep-identities"));
}

TEST_F(SimCommand, FailsAndHeals) {
    EXPECT_EQ(Run("fail getSIMStatus 5"), "0 ");
    EXPECT_EQ(ReadFile(device), With("\": 7", "\": {\"error\": 5, \"healed\": 7}"));
    EXPECT_EQ(Run("set getSIMStatus 6"),
              "0 kestal-sim: sys.getSIMStatus fails; the new value shows once it is healed\n");
    EXPECT_EQ(Run("heal getSIMStatus"), "0 ");
    EXPECT_EQ(ReadFile(device), With("\": 7", "\": 6"));
}

TEST_F(SimCommand, TakesNamesInPlaceOfNumbers) {
    EXPECT_EQ(Run("set sys.getSIMStatus pin_locked"), "0 ");
    EXPECT_EQ(ReadFile(device), With("\": 7", "\": \"pin_locked\""));
    EXPECT_EQ(Run("set sys.getBatteryStatus.chargingSource usb"), "0 ");
    EXPECT_EQ(Run("fail getSIMStatus not_answered"), "0 ");
    EXPECT_EQ(Run("show getSIMStatus"),
              "0 {\"error\": \"not_answered\", \"healed\": \"pin_locked\"}\n");
    EXPECT_EQ(Run("set getSIMStatus ready"),
              "0 kestal-sim: sys.getSIMStatus fails; the new value shows once it is healed\n");
    EXPECT_EQ(Run("heal getSIMStatus"), "0 ");
    EXPECT_EQ(Run("show getSIMStatus"), "0 \"ready\"\n");
}

TEST_F(SimCommand, MakesCallsFaultyAndHealsThem) {
    const auto entry = [](const std::string& text) {
        return With("\": 7", "\": {" + text + ", \"healed\": 7}");
    };
    EXPECT_EQ(Run("fail getSIMStatus --delay 2s"), "0 ");
    EXPECT_EQ(ReadFile(device), entry(R"("error": null, "delay": 2)"));
    EXPECT_EQ(Run("fail getSIMStatus 5 --delay 500ms"), "0 ");
    EXPECT_EQ(ReadFile(device), entry(R"("error": 5, "delay": 0.5)"));
    EXPECT_EQ(Run("fail getSIMStatus --delay=1.5m"), "0 ");
    EXPECT_EQ(ReadFile(device), entry(R"("error": null, "delay": 90)"));
    EXPECT_EQ(Run("fail getSIMStatus --hang"), "0 ");
    EXPECT_EQ(ReadFile(device), entry(R"("error": null, "hang": true)"));
    EXPECT_EQ(Run("show getSIMStatus"), "0 {\"error\": null, \"hang\": true, \"healed\": 7}\n");
    EXPECT_EQ(Run("set getSIMStatus 6"), "0 ");
    EXPECT_EQ(Run("set getSIMStatus 7"), "0 ");
    EXPECT_EQ(Run("fail getSIMStatus 5 --times 3 --probability 0.2 --seed 7"), "0 ");
    EXPECT_THAT(
        Run("show getSIMStatus"),
        MatchesRegex("0 .\n    \"error\": 5,\n    \"times\": 3,\n    \"probability\": 0.2,\n"
                     "    \"seed\": 7,\n    \"since\": \"20..-..-..T..:..:..[.]...Z\",\n"
                     "    \"healed\": 7\n.\n"));
    EXPECT_EQ(Run("heal getSIMStatus"), "0 ");
    EXPECT_EQ(ReadFile(device), kDocument);
}

TEST_F(SimCommand, MakesCallsFaultyWithACodeByItsName) {
    EXPECT_EQ(Run("fail getSIMStatus not_answered --delay 2s"), "0 ");
    EXPECT_EQ(Run("set getSIMStatus ready"), "0 ");
    EXPECT_EQ(Run("show getSIMStatus"),
              "0 {\"error\": \"not_answered\", \"delay\": 2, \"healed\": \"ready\"}\n");
    EXPECT_THAT(Run("fail getSIMStatus not_answred --times 3"),
                ::testing::AllOf(StartsWith("1 kestal-sim: sys.getSIMStatus.error: expected "),
                                 EndsWith(", found 'not_answred'; did you mean not_answered?\n")));
    // CODE is only a code, and not another way to write the options.
    EXPECT_THAT(Run("fail getSIMStatus '{\"error\": 5}'"), EndsWith(", found an object\n"));
    EXPECT_EQ(Run("heal getSIMStatus"), "0 ");
    EXPECT_EQ(ReadFile(device), With("\": 7", "\": \"ready\""));
}

TEST_F(SimCommand, RefusesFaultsThatSayTooLittleOrTooMuch) {
    const auto refused = [](const std::string& arguments) {
        const std::string told = Run("fail getSIMStatus " + arguments);
        EXPECT_THAT(told, EndsWith("\nTry 'kestal-sim --help'.\n"));
        return told.substr(0, told.find('\n'));
    };
    const std::string start = "2 kestal-sim: ";
    EXPECT_EQ(refused(""), start + "CODE, --delay or --hang is required");
    EXPECT_EQ(refused("--times 3"), start + "CODE, --delay or --hang is required");
    EXPECT_EQ(refused("5 --seed 3"), start + "--seed requires --probability");
    EXPECT_EQ(refused("5 --hang"), start + "CODE excludes --hang");
    EXPECT_EQ(refused("--delay 2s --hang"), start + "--delay excludes --hang");
    for (const std::string delay : {"0", "2h", "-1s", "s", "604801", "nan"}) {
        EXPECT_EQ(refused("--delay=" + delay),
                  start + "--delay: '" + delay + "' is not a time from 1ms to 604800s");
    }
    for (const std::string probability : {"1.1", "-1", "0.2x", "nan"}) {
        EXPECT_EQ(refused("5 --probability=" + probability),
                  start + "--probability: '" + probability + "' is not a number from 0 to 1");
    }
    EXPECT_EQ(refused("5 --times 0"), start + "--times: '0' is not a number from 1 to 1000000000");
    EXPECT_EQ(ReadFile(device), kDocument);
}

TEST_F(SimCommand, ShowsADataCallThatIsComplete) {
    Document(R"({"sys": {"getCellularDataConnectionStatus":
{"now": 4, "next": 2, "at": "2026-01-01T00:00:00.000Z"}}})");
    EXPECT_EQ(Run("show sys.getCellularDataConnectionStatus"), "0 2\n");
    EXPECT_EQ(Run("set sys.cellularDataConnect.takes 4"), "0 ");
    EXPECT_EQ(ReadFile(device),
              R"({"sys": {"cellularDataConnect": {"takes": 4},"getCellularDataConnectionStatus":)"
              "\n2}}");
    Document(R"({"sys": {"getCellularDataConnectionStatus":
{"now": "connecting", "next": "connected", "at": "2026-01-01T00:00:00.000Z"}}})");
    EXPECT_EQ(Run("show sys.getCellularDataConnectionStatus"), "0 \"connected\"\n");
}

TEST_F(SimCommand, LoadsAnotherDevice) {
    const std::filesystem::path other = directory / "other.json";
    WriteFile(other, "{\"sys\": {\"getSIMStatus\":  1}}");
    EXPECT_EQ(Run("load " + other.string()), "0 ");
    EXPECT_EQ(ReadFile(device), "{\"sys\": {\"getSIMStatus\":  1}}");
    WriteFile(other, "{\"sys\": {\"getSIMState\":  1}}");
    EXPECT_EQ(
        Run("load " + other.string()),
        "1 kestal-sim: " + other.string() +
            ":1: sys.getSIMState: expected the name of a call, found an unknown name; did you mean "
            "sys.getSIMStatus?\n");
    EXPECT_EQ(ReadFile(device), "{\"sys\": {\"getSIMStatus\":  1}}");
    EXPECT_EQ(Run("load nosuchdevice"), "1 kestal-sim: nosuchdevice: No such file or directory\n");
}

TEST_F(SimCommand, ListsTheShippedDevicesAndScenarios) {
    EXPECT_THAT(Run("devices"), HasSubstr("\nroaming              LTE in a network abroad\n"));
    EXPECT_THAT(
        Run("scenarios"),
        HasSubstr(
            "\nsim-swap  The SIM is taken out and another one is put in, which wants its PIN\n"));
}

TEST_F(SimCommand, LoadsAShippedDeviceByItsName) {
    EXPECT_THAT(Run("load roaming"), StartsWith("0 "));
    EXPECT_EQ(ReadFile(device), ReadFile(KESTAL_SHIPPED_DEVICES "/roaming.json"));
    EXPECT_EQ(Run("load romaing"),
              "1 kestal-sim: romaing: No such file or directory; did you mean roaming?\n");
    EXPECT_THAT(Run("reset"), StartsWith("0"));
    EXPECT_EQ(ReadFile(device), ReadFile(KESTAL_SHIPPED_DEVICES "/default.json"));
}

TEST_F(SimCommand, TellsWhatARunningServiceDoesNotSeeOfANewDevice) {
    const std::filesystem::path other = directory / "other.json";
    const auto load = [&](const std::string& text) {
        WriteFile(other, text);
        return Run("load " + other.string());
    };
    EXPECT_EQ(load(R"({"sys": {"getGPSCarrierEnabled": 1, "getMultiSimEnabled": 0}})"),
              "0 kestal-sim: a running service has read these values already and does not see "
              "their changes: sys.getGPSCarrierEnabled, sys.getMultiSimEnabled; with --restart, it "
              "is started anew\n");
    EXPECT_EQ(load(R"({"sys": {"getGPSCarrierEnabled": 0, "getMultiSimEnabled": 0,
                               "getWebUICarrierEnabled": 0}})"),
              "0 kestal-sim: a running service has read these values already and does not see "
              "their changes: sys.getGPSCarrierEnabled (1 before, 0 now); with --restart, it is "
              "started anew\n");
    EXPECT_EQ(load(R"({"sys": {"getGPSCarrierEnabled": 0, "getMultiSimEnabled": 0}})"), "0 ");
}

TEST_F(SimCommand, LeavesTheDeviceIfThereIsNoServiceToBeStartedAnew) {
    const std::string before = ReadFile(device);
    const std::string complaint =
        "1 kestal-sim: no service of this user runs on " + device.string() + "\n";
    EXPECT_EQ(Run("load --restart no-sim"), complaint);
    EXPECT_EQ(Run("reset --restart"), complaint);
    EXPECT_EQ(ReadFile(device), before);
}

TEST_F(SimCommand, TakesWhatTheToolsForTheDevicePrint) {
    EXPECT_EQ(Run(R"(set getSIMStatus '{"status": {"value": 6, "name": "pin_locked"}}')"), "0 ");
    EXPECT_EQ(ReadFile(device), With("\": 7", "\": \"pin_locked\""));
    EXPECT_EQ(Run(R"(set getSIMStatus '{"value": 7, "name": "pin_locked"}')"),
              "1 kestal-sim: sys.getSIMStatus: 7 is not called 'pin_locked'\n");
}

TEST_F(SimCommand, LoadsEvenIfTheDocumentIsDamagedOrMissing) {
    const std::string file = KESTAL_SHIPPED_DEVICES "/default.json";
    Document("{");
    EXPECT_EQ(Run("load " + file), "0 ");
    EXPECT_EQ(ReadFile(device), ReadFile(file));
    std::filesystem::remove(device);
    EXPECT_EQ(Run("load " + file), "0 ");
    EXPECT_EQ(ReadFile(device), ReadFile(file));
}

TEST_F(SimCommand, CreatesADocumentWithTheModeOfTheUmaskAndSessionsForTheirOwner) {
    using std::filesystem::perms;
    const auto modeOf = [](const std::filesystem::path& file) {
        return std::filesystem::status(file).permissions();
    };
    const std::string file = KESTAL_SHIPPED_DEVICES "/default.json";
    const mode_t mask = umask(027);
    std::filesystem::remove(device);
    EXPECT_EQ(Run("load " + file), "0 ");
    EXPECT_EQ(modeOf(device), perms(0640));
    (void)umask(022);
    std::filesystem::remove(device);
    EXPECT_EQ(Run("load " + file), "0 ");
    EXPECT_EQ(modeOf(device), perms(0644));
    EXPECT_THAT(Run("session open"), StartsWith("0 "));
    EXPECT_EQ(modeOf(device.string() + ".sessions"), perms(0600));
    (void)umask(mask);
}

TEST_F(SimCommand, SuggestsNamesForErrorsInADamagedDocument) {
    Document("{\"sys\": {\n\"getSIMState\": 1}}");
    for (const std::string command : {"show", "set sys.getNumSims 1"}) {
        EXPECT_EQ(Run(command), "1 kestal-sim: " + device.string() +
                                    ":2: sys.getSIMState: expected the name of a call, found an "
                                    "unknown name; did you mean sys.getSIMStatus?\n");
    }
}

TEST_F(SimCommand, DoesNotTakeAnEmptyArgumentForAll) {
    EXPECT_EQ(Run("notify smsReceived"), "0 ");
    for (const std::string clear : {"--clear ''", "--clear="}) {
        EXPECT_EQ(Run("notify " + clear),
                  "2 kestal-sim: --clear: expected a value, found nothing\n"
                  "Try 'kestal-sim --help'.\n");
    }
    EXPECT_EQ(Run("show msgbus.zelt.ans.notifications[0].id"), "0 \"smsReceived\"\n");
    EXPECT_THAT(Run("session open"), StartsWith("0 "));
    EXPECT_EQ(Run("session close ''"),
              "2 kestal-sim: COOKIE: expected a value, found nothing\n"
              "Try 'kestal-sim --help'.\n");
    EXPECT_EQ(binding::LiveSessions().size(), 1U);
}

TEST_F(SimCommand, NotifiesAndClears) {
    EXPECT_EQ(Run("notify smsReceived"), "0 ");
    EXPECT_EQ(Run("notify PCO3 --severity critical --inactive --title mine"), "0 ");
    EXPECT_THAT(Run("show msgbus.zelt.ans.notifications[1]"),
                HasSubstr("\"severity\": \"critical\",\n    \"labelId\": "
                          "\"notification_category_account_label\",\n    \"titleId\": \"mine\""));
    EXPECT_EQ(Run("notify --clear smsReceived"), "0 ");
    EXPECT_EQ(Run("show msgbus.zelt.ans.notifications[0].id"), "0 \"PCO3\"\n");
    EXPECT_EQ(Run("notify --clear"), "0 ");
    EXPECT_EQ(Run("show msgbus.zelt.ans.notifications"), "0 []\n");
    EXPECT_THAT(Run("notify --types"), HasSubstr("\nsmsReceived\n"));
}

TEST_F(SimCommand, ClearsATypeThatIsNamedAllLikeAnyOther) {
    EXPECT_EQ(Run("notify smsReceived"), "0 ");
    EXPECT_EQ(Run("notify --clear all"), "1 kestal-sim: there is no notification 'all'\n");
    EXPECT_EQ(Run("notify all --category a --severity info --label b --title c --text d"), "0 ");
    EXPECT_EQ(Run("notify --clear all"), "0 ");
    EXPECT_EQ(Run("show msgbus.zelt.ans.notifications[0].id"), "0 \"smsReceived\"\n");
    EXPECT_THAT(Run("notify --help"), HasSubstr("\n  --clear [TYPE] "));
}

TEST_F(SimCommand, UsesTheGivenDevice) {
    const std::filesystem::path other = directory / "other.json";
    WriteFile(other, "{\"sys\": {\"getSIMStatus\": 1}}");
    EXPECT_EQ(Run("--device " + other.string() + " set sys.getSIMStatus 2"), "0 ");
    EXPECT_EQ(ReadFile(other), "{\"sys\": {\"getSIMStatus\": 2}}");
    EXPECT_EQ(ReadFile(device), kDocument);
    EXPECT_THAT(Run("--device " + other.string() + " session open"), StartsWith("0 torusess="));
    EXPECT_TRUE(std::filesystem::exists(other.string() + ".sessions"));
}

TEST_F(SimCommand, PlaysAndReportsEvents) {
    const std::filesystem::path scenario = directory / "scenario.json";
    WriteFile(scenario, R"({"events": [
        {"at": 0, "say": "first", "set": {"sys.getSIMStatus": 1}},
        {"at": 100, "say": "last", "set": {"sys.getSIMStatus": 2}}]})");
    const std::string play = "play --speed 1000000 " + scenario.string();
    EXPECT_EQ(Run(play), "0      0.0 s  first\n   100.0 s  last\n");
    EXPECT_EQ(ReadFile(device), With("\": 7", "\": 2"));
    EXPECT_EQ(Run(play + " --quiet"), "0 ");
}

TEST_F(SimCommand, ChecksAScenarioBeforeItPlaysIt) {
    const std::filesystem::path scenario = directory / "scenario.json";
    WriteFile(scenario, R"({"events": [
        {"at": 0, "say": "first", "set": {"sys.getSIMStatus": 1}},
        {"at": 1, "say": "last", "set": {"sys.getSIMStats": 2}}]})");
    for (const std::string option : {"", " --check"}) {
        EXPECT_EQ(Run("play " + scenario.string() + option),
                  "1 kestal-sim: " + scenario.string() +
                      ":3: events[1].set.sys.getSIMStats: sys.getSIMStats: expected the name of a "
                      "call, found an unknown name; did you mean sys.getSIMStatus?\n");
    }
    WriteFile(scenario, R"({"events": [{"at": 0, "say": "a", "set": {"sys.getSIMStatus": 1}}]})");
    EXPECT_EQ(Run("play --check " + scenario.string()), "0 ");
    EXPECT_EQ(ReadFile(device), kDocument);
    EXPECT_EQ(Run("play --loop " + scenario.string()),
              "1 kestal-sim: " + scenario.string() +
                  ": a scenario that takes no time cannot be repeated\n");
}

TEST_F(SimCommand, PrintsItsHelp) {
    EXPECT_THAT(Run("--help"), StartsWith("0 Changes the device"));
    EXPECT_THAT(Run("--help"), HasSubstr("\nCommands:\n"));
    EXPECT_THAT(Run("set --help"), HasSubstr("\nArguments:\n"));
    for (const std::string command : {"show", "set", "fail", "heal", "devices", "scenarios", "load",
                                      "reset", "notify", "session", "play"}) {
        EXPECT_THAT(Run("--help"), HasSubstr("\n  " + command + " "));
        EXPECT_THAT(Run(command + " --help"), HasSubstr("\nUsage: kestal-sim " + command + " "));
        EXPECT_THAT(Run(command + " --help"), StartsWith("0 "));
    }
}

TEST_F(SimCommand, ReportsWrongUsage) {
    for (const std::string wrong : {"",
                                    "shew",
                                    "set",
                                    "set a",
                                    "set a b c",
                                    "fail a",
                                    "heal",
                                    "load",
                                    "load a b",
                                    "reset a",
                                    "devices a",
                                    "notify",
                                    "notify a --clear",
                                    "notify --types --clear",
                                    "login",
                                    "logout",
                                    "play",
                                    "play a --speed 0",
                                    "play a --speed x",
                                    "play a --speed nan",
                                    "play a --speed inf",
                                    "play a --speed -1",
                                    "play a --speed 0.009",
                                    "notify --clear --severity alert",
                                    "notify --clear smsReceived --text a",
                                    "notify --types --inactive",
                                    "shew --help",
                                    "show a b",
                                    "show a --paths",
                                    "--device",
                                    "--device '' show",
                                    "show --nothing"}) {
        const std::string told = Run(wrong);
        EXPECT_THAT(told, StartsWith("2 kestal-sim: ")) << wrong;
        EXPECT_THAT(told, EndsWith("Try 'kestal-sim --help'.\n")) << wrong;
    }
    EXPECT_EQ(Run(""), "2 kestal-sim: a command is expected\nTry 'kestal-sim --help'.\n");
    EXPECT_THAT(Run("shwo"),
                StartsWith("2 kestal-sim: 'shwo' is neither a command nor an option; did you mean "
                           "show?\n"));
    EXPECT_THAT(Run("shew"),
                StartsWith("2 kestal-sim: 'shew' is neither a command nor an option; did you mean "
                           "show?\n"));
    EXPECT_EQ(ReadFile(device), kDocument);
}

TEST_F(SimCommand, FailsWhenItsOutputCannotBeWritten) {
    for (const std::string command : {"show", "--help", "set --help"}) {
        EXPECT_EQ(Run(command + " 2>/dev/null >/dev/full"), "1 ");
    }
}

}  // namespace
