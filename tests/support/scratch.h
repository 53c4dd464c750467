// A simulated device for one test. Its document and its log are in a directory that holds nothing
// else.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

/// Sets environment variables for the duration of a test.
class Environment {
  public:
    ~Environment();

    void Set(const std::string& name, const std::string& value);
    void Unset(const std::string& name);

  private:
    void Remember(const std::string& name);

    std::map<std::string, std::optional<std::string>> before;
};

class SimulatedDevice : public ::testing::Test {
  protected:
    SimulatedDevice();
    ~SimulatedDevice() override;

    /// Replaces the device document atomically.
    void Document(const std::string& text) const;

    /// Replaces a file atomically.
    static void WriteFile(const std::filesystem::path& path, const std::string& text);
    static std::string ReadFile(const std::filesystem::path& path);

    /// The messages logged so far, without time and process.
    std::vector<std::string> Log() const;

    Environment environment;
    std::filesystem::path directory;
    std::filesystem::path device;
};
