#pragma once

// qpdf asks its users to say that they use the present form of its pointers; otherwise its headers warn.
#ifndef POINTERHOLDER_TRANSITION
#define POINTERHOLDER_TRANSITION 4
#endif

// To clang, version 11.3's header of this class is no valid C++20. Its name alone is needed here, so the header is kept
// out by its own guard.
#ifdef __clang__
#define JSON_HH
class JSON;
#endif

#include <qpdf/InputSource.hh>
#include <qpdf/Pl_Flate.hh>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFExc.hh>
#include <qpdf/QPDFObjectHandle.hh>
#include <qpdf/QPDFStreamFilter.hh>
