#include "bindings/linux/modem/cells.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace {

using binding::ReadCells;
using binding::Region;
using binding::ServingCells;
using nlohmann::json;

ServingCells Read(const char* cells) {
    return ReadCells(json::parse(cells), Region::europe, {});
}

TEST(Cells, AnLteCellTellsBandIdentityAndBandwidth) {
    const ServingCells cells = Read(R"([
        {"cell-type": 5, "serving": true, "earfcn": 1300, "physical-ci": "1A0", "bandwidth": 100}])");
    EXPECT_EQ(cells.lteBand, 3);
    EXPECT_EQ(cells.lteCell, 0x1A0);
    EXPECT_EQ(cells.lteBandwidth, 20);
    EXPECT_EQ(cells.lteCarriers, 1);
    EXPECT_EQ(cells.nrBand, std::nullopt);
    EXPECT_EQ(cells.umtsBand, std::nullopt);
}

TEST(Cells, AnNrCellTellsItsOwn) {
    const ServingCells cells = Read(R"([
        {"cell-type": 6, "serving": true, "nrarfcn": 640000, "physical-ci": "3EF",
         "bandwidth": 100}])");
    EXPECT_EQ(cells.nrBand, 78);
    EXPECT_EQ(cells.nrCell, 1007);
    EXPECT_EQ(cells.nrBandwidth, 100);
    EXPECT_EQ(cells.lteCarriers, 0);
}

TEST(Cells, AUmtsCellTellsItsBand) {
    EXPECT_EQ(Read(R"([{"cell-type": 3, "serving": true, "uarfcn": 10700}])").umtsBand, 1);
}

TEST(Cells, NeighboursDoNotCount) {
    EXPECT_EQ(Read(R"([
        {"cell-type": 5, "serving": false, "earfcn": 1300, "physical-ci": "1A0"},
        {"cell-type": 5, "earfcn": 1300}])"),
              ServingCells{});
}

TEST(Cells, ThePrimaryCellIsShownAndAllCarriersAreAdded) {
    const ServingCells cells = Read(R"([
        {"cell-type": 5, "serving": true, "serving-cell-type": 2, "earfcn": 6300,
         "physical-ci": "1", "bandwidth": 50},
        {"cell-type": 5, "serving": true, "serving-cell-type": 1, "earfcn": 1300,
         "physical-ci": "2", "bandwidth": 100},
        {"cell-type": 6, "serving": true, "serving-cell-type": 4, "nrarfcn": 155000,
         "bandwidth": 10},
        {"cell-type": 6, "serving": true, "serving-cell-type": 3, "nrarfcn": 640000,
         "bandwidth": 90}])");
    EXPECT_EQ(cells.lteBand, 3);
    EXPECT_EQ(cells.lteCell, 2);
    EXPECT_EQ(cells.lteBandwidth, 30);
    EXPECT_EQ(cells.lteCarriers, 2);
    EXPECT_EQ(cells.nrBand, 78);
    EXPECT_EQ(cells.nrBandwidth, 100);
}

TEST(Cells, BandwidthsComeInSeveralUnits) {
    const struct {
        const char* told;
        std::optional<int> megahertz;
    } rows[] = {
        {"6", 1},
        {"25", 5},
        {"50", 10},
        {"75", 15},
        {"100", 20},
        {"5", 5},
        {"10", 10},
        {"15", 15},
        {"20", 20},
        {"1400", 1},
        {"20000", 20},
        {"3000", 3},
        {"15000000", 15},
        {"0", std::nullopt},
        {"7", std::nullopt},
        {"-20", std::nullopt},
        {"4294967295", std::nullopt},
    };
    for (const auto& row : rows) {
        const std::string cells =
            R"([{"cell-type": 5, "serving": true, "bandwidth": )" + std::string(row.told) + "}]";
        EXPECT_EQ(Read(cells.c_str()).lteBandwidth, row.megahertz) << row.told;
    }
}

TEST(Cells, WhatIsWrongIsNotTold) {
    for (const char* cells :
         {"null", "{}", "7", "[null, 5, \"cell\", []]", R"([{"cell-type": "5", "serving": true}])",
          R"([{"cell-type": 5, "serving": 1, "earfcn": 1300}])"}) {
        EXPECT_EQ(Read(cells), ServingCells{}) << cells;
    }
    for (const char* identity : {"", "1F8", "-1", "12G", "0x1", " 1", "FFFFFFFFFFFFFFFF"}) {
        const std::string cells = R"([{"cell-type": 5, "serving": true, "physical-ci": ")" +
                                  std::string(identity) + "\"}]";
        EXPECT_EQ(Read(cells.c_str()).lteCell, std::nullopt) << identity;
    }
    const ServingCells unknown = Read(
        R"([{"cell-type": 5, "serving": true, "earfcn": 4294967295, "physical-ci": 7,
             "bandwidth": "20"}])");
    EXPECT_EQ(unknown.lteBand, std::nullopt);
    EXPECT_EQ(unknown.lteCell, std::nullopt);
    EXPECT_EQ(unknown.lteBandwidth, std::nullopt);
}

}  // namespace
