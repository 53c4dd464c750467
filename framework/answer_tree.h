// The tree that an answer is built in and the function that turns it into JSON. Everything includes
// CTPP2 from here: its utility header must not be included twice.
#pragma once

#include <ctpp2/CDT.hpp>
#include <ctpp2/CTPP2Util.hpp>
