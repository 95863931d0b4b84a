; The installer: for the user alone or for all, in the language of Windows, English or
; Japanese. Silent with /S; /CurrentUser and /AllUsers choose, else it is the way of the
; version that is there. makensis is given VERSION, BUNDLE (the folder that is shipped),
; REMOVAL (the file with the macro RemoveShippedFiles), PROJECT and OUTPUT.
Target amd64-unicode
Unicode true

!define PRODUCT "Tarvel CD Ripper"
!define KEY "TarvelCdRipper"
!define PROGRAM "tarvel-cd-ripper.exe"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\${KEY}"

!define MULTIUSER_EXECUTIONLEVEL Highest
!define MULTIUSER_MUI
!define MULTIUSER_INSTALLMODE_COMMANDLINE
!define MULTIUSER_USE_PROGRAMFILES64
!define MULTIUSER_INSTALLMODE_INSTDIR "${PRODUCT}"
!define MULTIUSER_INSTALLMODE_INSTDIR_REGISTRY_KEY "Software\${KEY}"
!define MULTIUSER_INSTALLMODE_INSTDIR_REGISTRY_VALUENAME "Folder"
!define MULTIUSER_INSTALLMODE_DEFAULT_REGISTRY_KEY "Software\${KEY}"
!define MULTIUSER_INSTALLMODE_DEFAULT_REGISTRY_VALUENAME "Folder"
!include MultiUser.nsh
!include MUI2.nsh
!include FileFunc.nsh
!include LogicLib.nsh
!include WinVer.nsh
!include "${REMOVAL}"

Name "${PRODUCT}"
OutFile "${OUTPUT}"
SetCompressor /SOLID lzma
BrandingText " "
VIProductVersion "${VERSION}.0"
VIAddVersionKey "ProductName" "${PRODUCT}"
VIAddVersionKey "ProductVersion" "${VERSION}"
VIAddVersionKey "FileDescription" "${PRODUCT} Setup"
VIAddVersionKey "FileVersion" "${VERSION}"
VIAddVersionKey "CompanyName" "VEDRANO"
VIAddVersionKey "LegalCopyright" ""

!define MUI_ICON "${PROJECT}/packaging/icon.ico"
!define MUI_UNICON "${PROJECT}/packaging/icon.ico"
; By way of the shell, so that the program has not the rights of the installer.
!define MUI_FINISHPAGE_RUN "$WINDIR\explorer.exe"
!define MUI_FINISHPAGE_RUN_PARAMETERS '$\"$INSTDIR\${PROGRAM}$\"'

!insertmacro MUI_PAGE_WELCOME
!insertmacro MULTIUSER_PAGE_INSTALLMODE
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"
!insertmacro MUI_LANGUAGE "Japanese"

LangString ProgramRuns ${LANG_ENGLISH} "${PRODUCT} is running. Close it, then try again."
LangString ProgramRuns ${LANG_JAPANESE} "${PRODUCT} が実行中です。終了してから再試行してください。"
LangString WindowsTooOld ${LANG_ENGLISH} "${PRODUCT} needs Windows 10 or later."
LangString WindowsTooOld ${LANG_JAPANESE} "${PRODUCT} には Windows 10 以降が必要です。"

; A running program cannot be replaced, and half a replaced one does not run.
!macro RefuseWhileRunning prefix
Function ${prefix}RefuseWhileRunning
    again:
    ${IfNot} ${FileExists} "$INSTDIR\${PROGRAM}"
        Return
    ${EndIf}
    ClearErrors
    FileOpen $0 "$INSTDIR\${PROGRAM}" a
    ${IfNot} ${Errors}
        FileClose $0
        Return
    ${EndIf}
    MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "$(ProgramRuns)" /SD IDCANCEL IDRETRY again
    SetErrorLevel 2
    Abort
FunctionEnd
!macroend
!insertmacro RefuseWhileRunning ""
!insertmacro RefuseWhileRunning "un."

Function .onInit
    SetRegView 64
    ${IfNot} ${AtLeastWin10}
        MessageBox MB_OK|MB_ICONSTOP "$(WindowsTooOld)" /SD IDOK
        Abort
    ${EndIf}
    !insertmacro MULTIUSER_INIT
FunctionEnd

Function un.onInit
    SetRegView 64
    !insertmacro MULTIUSER_UNINIT
FunctionEnd

; Each version knows what it shipped: the one that is there takes itself away.
Function RemoveEarlierVersion
    ReadRegStr $1 SHCTX "Software\${KEY}" "Folder"
    ${If} $1 == ""
    ${OrIfNot} ${FileExists} "$1\uninstall.exe"
        Return
    ${EndIf}
    ExecWait '"$1\uninstall.exe" /S /$MultiUser.InstallMode _?=$1' $2
    ${If} $2 != 0
        SetErrorLevel 2
        Abort
    ${EndIf}
    Delete "$1\uninstall.exe"
    RMDir "$1"
FunctionEnd

Section
    Call RefuseWhileRunning
    Call RemoveEarlierVersion
    SetOutPath "$INSTDIR"
    File /r "${BUNDLE}/*.*"
    WriteUninstaller "$INSTDIR\uninstall.exe"
    CreateShortcut "$SMPROGRAMS\${PRODUCT}.lnk" "$INSTDIR\${PROGRAM}"

    WriteRegStr SHCTX "Software\${KEY}" "Folder" "$INSTDIR"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayName" "${PRODUCT}"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\${PROGRAM}"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "Publisher" "VEDRANO"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\uninstall.exe" /$MultiUser.InstallMode'
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /$MultiUser.InstallMode /S'
    WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "NoModify" 1
    WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "NoRepair" 1
    ${GetSize} "$INSTDIR" "/S=0K" $0 $1 $2
    IntFmt $0 "0x%08X" $0
    WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "EstimatedSize" "$0"
SectionEnd

; Settings and music are the user's, and so is what lies in the folder but was not shipped.
Section "Uninstall"
    Call un.RefuseWhileRunning
    !insertmacro RemoveShippedFiles
    Delete "$INSTDIR\uninstall.exe"
    RMDir "$INSTDIR"
    Delete "$SMPROGRAMS\${PRODUCT}.lnk"
    DeleteRegKey SHCTX "${UNINSTALL_KEY}"
    DeleteRegKey SHCTX "Software\${KEY}"
SectionEnd
