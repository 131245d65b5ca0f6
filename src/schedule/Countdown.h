#pragma once

#include <QString>

namespace Quillon {

constexpr int CountdownCapacity = 256;

// "1 hr 2 mins 5 secs ": each part with a blank after its unit, hours never folded into days.
// Built in a fixed buffer so the twice-a-second refresh allocates nothing per cell.
void formatTimeToLaunch(quint32 seconds, char (&buffer)[CountdownCapacity]);

// The countdown cell for a fire date remainingSecs ahead; empty when not strictly ahead.
QString countdownText(double remainingSecs);

} // namespace Quillon
