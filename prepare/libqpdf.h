#pragma once

// The headers of libqpdf that this project uses. Its JSON, of which nothing is used here, is left out for
// Clang 14, which does not compile it as C++20, since it has a vector of itself.
#if defined(__clang__) && __clang_major__ < 15
#define JSON_HH
class JSON;
#endif
// Pointers are those of the standard library alone.
#define POINTERHOLDER_TRANSITION 4

#include <qpdf/Buffer.hh>
#include <qpdf/BufferInputSource.hh>
#include <qpdf/InputSource.hh>
#include <qpdf/Pipeline.hh>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFObjectHandle.hh>
#include <qpdf/QPDFTokenizer.hh>
