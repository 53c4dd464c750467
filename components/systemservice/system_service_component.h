#pragma once

#include <string>

#include "framework/page_component.h"

/// Answers the operations of the system-service API.
class SystemServiceComponent : public PageComponent {
  public:
    SystemServiceComponent();

    /// Read operation by name: @p in holds it under "api". Returns the result of Dispatch, or
    /// PAGE_ERROR_FAILED for a name that reads nothing.
    PageError GetDynamicData(CTPP::CDT& out, const CTPP::CDT& in) override;

    /// Checks the name of a write operation under "api" of @p in. Returns 0, or 1 with "errorDesc"
    /// set in @p out.
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

  private:
    /// Name of the operation that GetDynamicData or ValidateFormData was last asked for.
    std::string apiName;
};
