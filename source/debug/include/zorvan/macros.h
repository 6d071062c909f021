#pragma once

/// \file
/// Short forms that add the source position and make the cheap call the easy one. Part of <zorvan/debug.h>.
