#pragma once

#include <istream>
#include <ostream>
#include <sstream>
#include <string>

// TinyXML's header includes <iostream>, and with it a static constructor in each source: work at every load of the
// library, for streams that nobody here uses. Its guard keeps it out, for this one include only.
#ifndef _GLIBCXX_IOSTREAM
#define _GLIBCXX_IOSTREAM 1 // NOLINT(bugprone-reserved-identifier): the guard's name is the standard library's
#include <tinyxml.h>
#undef _GLIBCXX_IOSTREAM
#else
#include <tinyxml.h>
#endif
