#include "PropertyList/PropertyListBuilder.h"

#include <expat.h>

#include <exception>
#include <limits>
#include <memory>
#include <new>

namespace orvex::platform {

namespace {

struct FreeParser {
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};

using ParserHandle = std::unique_ptr<XML_ParserStruct, FreeParser>;

void require(bool condition) {
    if (!condition) {
        throw PropertyListError();
    }
}

/// Hands the parser's events to a builder. The parser is C code that no exception may pass: what the builder raises is
/// kept, and the parser stopped.
class Events {
public:
    Events(XML_Parser parser, PropertyListBuilder& builder) : parser_(parser), builder_(builder) {
        XML_SetUserData(parser, this);
        XML_SetElementHandler(parser, onBegin, onEnd);
        XML_SetCharacterDataHandler(parser, onText);
        XML_SetStartDoctypeDeclHandler(parser, onDoctype);
        XML_SetSkippedEntityHandler(parser, onEntity);
    }

    void raiseFailure() const {
        if (failure_) {
            std::rethrow_exception(failure_);
        }
    }

private:
    template <typename Work>
    void guard(Work work) {
        if (failure_) {
            return; // a stopped parser may still deliver an event or two
        }
        try {
            work();
        } catch (...) {
            failure_ = std::current_exception();
            XML_StopParser(parser_, XML_FALSE);
        }
    }

    static Events& of(void* data) { return *static_cast<Events*>(data); }

    static void onBegin(void* data, const XML_Char* name, const XML_Char**) {
        of(data).guard([&] { of(data).builder_.begin(QByteArrayView(name)); });
    }

    static void onEnd(void* data, const XML_Char*) {
        of(data).guard([&] { of(data).builder_.end(); });
    }

    static void onText(void* data, const XML_Char* text, int size) {
        of(data).guard([&] { of(data).builder_.text(QByteArrayView(text, size)); });
    }

    // What a document declares by itself can grow without bounds; no tool declares anything.
    static void onDoctype(void* data, const XML_Char*, const XML_Char*, const XML_Char*, int hasInternalSubset) {
        of(data).guard([&] { require(hasInternalSubset == 0); });
    }

    // An entity that is declared nowhere would be missing from its text.
    static void onEntity(void* data, const XML_Char*, int) {
        of(data).guard([] { require(false); });
    }

    XML_Parser parser_;
    PropertyListBuilder& builder_;
    std::exception_ptr failure_;
};

} // namespace

PropertyList PropertyList::parse(QByteArrayView xml) {
    const ParserHandle parser(XML_ParserCreate(nullptr));
    if (!parser) {
        throw std::bad_alloc();
    }
    PropertyListBuilder builder;
    const Events events(parser.get(), builder);
    const bool isTooLong = xml.size() > std::numeric_limits<int>::max();
    const bool isParsed =
        !isTooLong && XML_Parse(parser.get(), xml.data(), static_cast<int>(xml.size()), XML_TRUE) == XML_STATUS_OK;
    events.raiseFailure();
    if (!isParsed) {
        throw PropertyListError();
    }
    return builder.finish();
}

} // namespace orvex::platform
