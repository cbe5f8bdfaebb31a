// Result codes of archiving and the messages that they raise.
#pragma once

namespace arc
{
inline constexpr int ResultDone = 0;
inline constexpr int ResultSaveFailed = 15;    ///< every failure of a save
inline constexpr int ResultLoadFailed = 29;    ///< every failure of a load
inline constexpr int ResultNoThread = 8490;    ///< the status thread could not be started
inline constexpr int ResultNotArchived = 8491; ///< the patient is locked or a check failed
inline constexpr int ResultCancelled = 8493;
inline constexpr int ResultNoDialog = 8495; ///< the progress dialog could not be created

/// The message for a result as a string resource id, 0 where nothing is shown. The texts with "%d" take the
/// code.
unsigned SaveResultText(int code);
unsigned LoadResultText(int code);
/// The message that the status thread itself shows when it ends with this code.
unsigned ThreadResultText(int code);
} // namespace arc
