#pragma once

// Symbols are hidden by default. What a library offers to its users is marked with its macro.

/// Marks what libsensorhost, or any other implementation of the host classes, provides.
#define SENSORHOST_API __attribute__((visibility("default")))

/// Marks what libsensorcontrol offers to its host.
#define SENSORCONTROL_API __attribute__((visibility("default")))

/// Keeps part of an exported class inside its library.
#define SENSORCONTROL_LOCAL __attribute__((visibility("hidden")))
