#include "host/xml.h"

namespace patina {

namespace {

// NOLINTNEXTLINE(cert-dcl50-cpp): libxml2's signature
void ignoreText(void* /*context*/, const char* /*format*/, ...) {}

void ignoreError(void* /*context*/, xmlErrorPtr /*error*/) {}

} // namespace

XmlSilence::XmlSilence()
    : generic_(xmlGenericError), genericContext_(xmlGenericErrorContext), structured_(xmlStructuredError),
      structuredContext_(xmlStructuredErrorContext) {
    xmlSetGenericErrorFunc(nullptr, ignoreText);
    xmlSetStructuredErrorFunc(nullptr, ignoreError);
}

XmlSilence::~XmlSilence() {
    xmlSetGenericErrorFunc(genericContext_, generic_);
    xmlSetStructuredErrorFunc(structuredContext_, structured_);
}

} // namespace patina
