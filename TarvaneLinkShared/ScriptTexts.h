#pragma once

// The fixed texts of the script link, to the letter as the server and the user read them. Scripts
// are Lua; each says how it fared by printing a count of lines and then a status line.

inline constexpr char szListTracks[] = "if(SelectScriptDocument()) then\n"
                                       "\tnTracks = GetTrackCount()\n"
                                       "\tprint(nTracks+1)\n"
                                       "\tprint(1)\n"
                                       "\tfor nTrack = 0,nTracks-1 do\n"
                                       "\t\tidTrack = GetTrackID(nTrack)\n"
                                       "\t\tprint(GetTrackName(idTrack))\n"
                                       "\tend\n"
                                       "else\n"
                                       "\tprint(1)\n"
                                       "\tprint(0)\n"
                                       "end\n";

inline constexpr char szASListTracks[] = "if(SelectAudioSuiteDocument()) then\n"
                                         "\tnTracks = GetTrackCount()\n"
                                         "\tprint(nTracks+1)\n"
                                         "\tprint(1)\n"
                                         "\tfor nTrack = 0,nTracks-1 do\n"
                                         "\t\tidTrack = GetTrackID(nTrack)\n"
                                         "\t\tprint(GetTrackName(idTrack))\n"
                                         "\tend\n"
                                         "else\n"
                                         "\tprint(1)\n"
                                         "\tprint(0)\n"
                                         "end\n";

inline constexpr char szExportSelectedRegion[] = "if(SelectScriptDocument()) then\n"
                                                 "\tidRegion = GetSelectedRegionID()\n"
                                                 "\tif IsNullRegionID(idRegion) == 0 then\n"
                                                 "\t\tstrFile = ExportRegion(idRegion)\n"
                                                 "\t\tprint(2)\n"
                                                 "\t\tprint(0)\n"
                                                 "\t\tprint(strFile)\n"
                                                 "\telse\n"
                                                 "\t\tprint(1)\n"
                                                 "\t\tprint(1)\n"
                                                 "\tend\n"
                                                 "else\n"
                                                 "\tprint(1)\n"
                                                 "\tprint(0)\n"
                                                 "end\n";

/// The uneven blanks are part of the text.
inline constexpr char szASExportLastProcess[] = "if(SelectAudioSuiteDocument()) then\n"
                                                "   idProcess = FindLastProcessCreated()\n"
                                                "   if IsNullProcessID(idProcess) == 0 then\n"
                                                "        SelectProcess(idProcess)\n"
                                                "       idRegion = GetSelectedRegionID()\n"
                                                "       if IsNullRegionID(idRegion) == 0 then\n"
                                                "           strFile = ExportRegion(idRegion)\n"
                                                "           print(2)\n"
                                                "           print(0)\n"
                                                "           print(strFile)\n"
                                                "       else\n"
                                                "           print(1)\n"
                                                "           print(1)\n"
                                                "       end\n"
                                                "   else\n"
                                                "       print(1)\n"
                                                "       print(2)\n"
                                                "   end\n"
                                                "else\n"
                                                "\tprint(1)\n"
                                                "\tprint(0)\n"
                                                "end\n";

inline constexpr char szRenderSelectedRegion[] = "if(SelectScriptDocument()) then\n"
                                                 "\tidRegion = GetSelectedRegionID()\n"
                                                 "\tif IsNullRegionID(idRegion) == 0 then\n"
                                                 "\t\tdSampleRate = GetSampleRate()\n"
                                                 "\t\tRegionRender(idRegion)\n"
                                                 "\t\tdStart = GetRegionStartPosition(idRegion)\n"
                                                 "\t\tdEnd = GetRegionEndPosition(idRegion)\n"
                                                 "\t\tprint(4)\n"
                                                 "\t\tprint('0')\n"
                                                 "\t\tprint(dSampleRate)\n"
                                                 "\t\tprint(dStart)\n"
                                                 "\t\tprint(dEnd)\n"
                                                 "\telse\n"
                                                 "\t\tprint(1)\n"
                                                 "\t\tprint(1)\n"
                                                 "\tend\n"
                                                 "else\n"
                                                 "\tprint(1)\n"
                                                 "\tprint(0)\n"
                                                 "end\n";

/// The uneven blanks are part of the text.
inline constexpr char szASRenderLastProcess[] =
    "if(SelectAudioSuiteDocument()) then\n"
    "   idProcess = FindLastProcessCreated()\n"
    "   if IsNullProcessID(idProcess) == 0 then\n"
    "        SelectProcess(idProcess)\n"
    "       idRegion = GetSelectedRegionID()\n"
    "       if IsNullRegionID(idRegion) == 0 then\n"
    "           dSampleRate = GetSampleRate()\n"
    "           RegionRender(idRegion)\n"
    "           dStart = GetRegionStartPosition(idRegion)\n"
    "           dEnd = GetRegionEndPosition(idRegion)\n"
    "           print(4)\n"
    "           print('0')\n"
    "           print(dSampleRate)\n"
    "           print(dStart)\n"
    "           print(dEnd)\n"
    "       else\n"
    "           print(1)\n"
    "           print(1)\n"
    "       end\n"
    "   else\n"
    "       print(1)\n"
    "       print(2)\n"
    "   end\n"
    "else\n"
    "\tprint(1)\n"
    "\tprint(0)\n"
    "end\n";

inline constexpr char szUpdateCounter[] = "print(GetUpdateCount())\n";

inline constexpr char strTarvaneNotRunning[] = "Error - Tarvane not running.";
inline constexpr char strTarvaneNotRunningAdvice[] = "Locate and launch Tarvane.";
inline constexpr char strNoSession[] = "No Tarvane session is selected";
inline constexpr char strNoRegion[] = "No Tarvane region is selected";
inline constexpr char strNoProcess[] = "No Tarvane Process exists";
inline constexpr char strCapturedPreviously[] = "Same audio captured previously.";
inline constexpr char strCaptureCancelled[] = "This capture has been cancelled";
