// What leaves the shared library: everything that carries ZO_API, and nothing else.
#pragma once

#if defined(_WIN32)
#if defined(ZO_BUILDING)
#define ZO_API __declspec(dllexport)
#else
#define ZO_API __declspec(dllimport)
#endif
#define ZO_API_NODISCARD [[nodiscard]] ZO_API
#else
/// Marks a class or function that clients of the shared library may use.
#define ZO_API __attribute__((visibility("default")))
/// The same for a class whose values must be looked at: the two spellings of attributes can't stand side by side.
#define ZO_API_NODISCARD [[nodiscard, gnu::visibility("default")]]
#endif
