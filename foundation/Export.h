#ifndef CLIPPARSER_FOUNDATION_EXPORT_H
#define CLIPPARSER_FOUNDATION_EXPORT_H

// Marks what the shared library shows to a host. Everything else is hidden (-fvisibility=hidden). Class templates
// carry the mark too, so that a host and the library share one type_info for each of their instantiations.
#if defined(_WIN32)
#if defined(CLIPPARSER_BUILDING)
#define CLIPPARSER_EXPORT __declspec(dllexport)
#else
#define CLIPPARSER_EXPORT __declspec(dllimport)
#endif
#else
#define CLIPPARSER_EXPORT __attribute__((visibility("default")))
#endif

#endif  // CLIPPARSER_FOUNDATION_EXPORT_H
