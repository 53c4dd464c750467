// The tree in which an answer is built, and the function that turns it into JSON. Every file
// includes CTPP2 through this one, because the utility header of the installed library has no
// include guard.
#pragma once

#include <ctpp2/CDT.hpp>
#include <ctpp2/CTPP2Util.hpp>
