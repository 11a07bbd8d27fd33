#pragma once
// Marks what the shared library exports; everything else is hidden.

#define SML_API __attribute__((visibility("default")))
