#pragma once

#include <QString>

/// Keys of the settings store. Each access makes a QSettings of its own, whose
/// scope follows from the organisation and application names.
namespace settings {

inline constexpr char maxRetries[] = "read/maxRetries";
inline constexpr char sampleOffset[] = "read/sampleOffset";
inline constexpr char defaultDir[] = "output/defaultDir";
inline constexpr char namingRule[] = "output/namingRule";
inline constexpr char language[] = "ui/language";

inline constexpr char defaultNamingRule[] = "{track}. {title}";

} // namespace settings

/// The settings group of one drive model, "driveOffsets/" and the model with
/// every slash and backslash made an underscore. Callers append "/offset" or
/// "/source".
QString driveOffsetKey(const QString& driveModel);
