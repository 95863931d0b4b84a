#pragma once

/// Registers the compiled-in images (":/icon.ico", ":/check.png"). A static
/// library does not register them by itself. May be called again.
void initResources();
