// Keeps the host's C random generator as it was while this bundle loads.
#pragma once

// Hands the host's own generator state back (once; cheap afterwards). Every
// exported entry point calls it first.
void AAXWrapper_GiveBackRandomState();
