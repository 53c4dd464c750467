// The suggestion for a member whose name is wrong.
#include "bindings/document/document_error.h"

#include <gtest/gtest.h>

namespace {

using binding::UnknownName;
using binding::WithSuggestion;

TEST(DocumentError, SuggestsThePathOfTheNearestName) {
    EXPECT_EQ(WithSuggestion(UnknownName({"sys", "getSimStats"}, "wrong", {"getSIMStatus"})),
              "wrong; did you mean sys.getSIMStatus?");
    EXPECT_EQ(WithSuggestion(UnknownName({"sys", "x"}, "wrong", {"getSIMStatus"})), "wrong");
}

}  // namespace
