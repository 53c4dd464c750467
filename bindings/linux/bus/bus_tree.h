// The objects of a daemon: path, interface, property.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "bindings/linux/bus/complaints.h"
#include "bindings/linux/bus/value_kind.h"

namespace binding {

/// Takes in what a daemon tells, however wrong, and says in the log which of the properties that
/// are read have values of a kind that cannot be understood.
class BusTree {
  public:
    BusTree(Complaints& newComplaints, std::string newService, ExpectedKinds newKinds)
        : complaints(newComplaints), service(std::move(newService)), kinds(newKinds) {}

    const nlohmann::json& Objects() const { return objects; }

    void Clear() { objects = nlohmann::json::object(); }
    /// Makes room for an object whose properties are going to come.
    void Expect(const std::string& path);
    void Forget(const std::string& path) { objects.erase(path); }

    /// Takes in objects by path, in place of those that were there.
    void Replace(const nlohmann::json& newObjects);
    /// Takes in interfaces of an object, by name.
    void Add(const std::string& path, const nlohmann::json& interfaces);
    /// Takes interfaces of an object away, and the object with the last one.
    void Remove(const std::string& path, const nlohmann::json& interfaces);
    /// Takes in properties of an interface of an object.
    void Put(const std::string& path, const std::string& interface,
             const nlohmann::json& properties);
    /// Takes properties away whose values are not known any more.
    void Invalidate(const std::string& path, const std::string& interface,
                    const nlohmann::json& names);

  private:
    void CheckKinds(const std::string& path, const std::string& interface,
                    const nlohmann::json& properties);

    Complaints& complaints;
    std::string service;
    ExpectedKinds kinds;
    nlohmann::json objects = nlohmann::json::object();
};

}  // namespace binding
