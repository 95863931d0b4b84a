#pragma once

/// Whether this platform's transport takes a detour by making a proxy of its plain
/// port, which then has to open tunnels to the secure hosts as well.
bool detourIsAProxy();
