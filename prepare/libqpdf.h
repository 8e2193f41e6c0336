#pragma once

// The headers of libqpdf that this project uses. Its JSON, of which nothing is used here, is left out: Clang
// 14 does not compile it as C++20, since it has a vector of itself.
#define JSON_HH
class JSON;
// Pointers are those of the standard library alone.
#define POINTERHOLDER_TRANSITION 4

#include <qpdf/Buffer.hh>
#include <qpdf/InputSource.hh>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFObjectHandle.hh>
