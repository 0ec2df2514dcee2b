; The installer for Windows. Whoever runs makensis passes
;   VERSION   as the library says it, like 1.0.0
;   STAGE     the folder with everything that is delivered for VST hosts
;   INSTALL   a file of instructions that put each file of it in its place
;   REMOVE    one that takes them away again (both by list_files.cmake)
;   INSTALL_CLAP, REMOVE_CLAP   the same for CLAP hosts, which all look in one folder
;   OUTPUT    the installer to be written
;
; Nothing that a person added or changed is lost, neither by installing over it nor by uninstalling: only the very files
; that are delivered are replaced and removed, and folders go when they are empty. The factory bank is the one
; delivered file that people replace by their own; theirs stays in use. So that the installer can tell whose it is, a
; copy of the delivered bank lies beside it.

; A 64-bit program, like what it installs; so it needs nothing of the 32-bit side of Windows.
Target amd64-unicode
!include "LogicLib.nsh"
!include "MUI2.nsh"
!include "x64.nsh"

!define PRODUCT "Quillon Multitap Delay"
!define VENDOR "Quillon Software"
!define BANK "default.fxb"
!define BANK_COPY "Factory programs.fxb"
!define LIBRARY "QuillonMultitapDelay"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\${PRODUCT}"
; Where hosts and installers of other makers keep the place of the VST folder.
!define VST_KEY "Software\VST"
!define VST_VALUE "VSTPluginsPath"

; Where CLAP hosts look, and the folder that is dealt with at the moment.
Var ClapFolder
Var Folder

Name "${PRODUCT}"
OutFile "${OUTPUT}"
BrandingText "${PRODUCT} ${VERSION}"
RequestExecutionLevel admin
SetCompressor /SOLID lzma
SetDateSave on

VIProductVersion "${VERSION}.0"
VIAddVersionKey "ProductName" "${PRODUCT}"
VIAddVersionKey "CompanyName" "${VENDOR}"
VIAddVersionKey "LegalCopyright" "${VENDOR}"
VIAddVersionKey "FileDescription" "${PRODUCT} installer"
VIAddVersionKey "FileVersion" "${VERSION}"
VIAddVersionKey "ProductVersion" "${VERSION}"

!define MUI_ABORTWARNING
!define MUI_DIRECTORYPAGE_TEXT_TOP "Choose the folder for the effect, inside one in which your music software looks for \
64-bit VST plug-ins. For CLAP hosts it goes where they all look. Your own skins and bank that are already there stay."
!insertmacro MUI_PAGE_LICENSE "${STAGE}/LICENSE"
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"

; For the installer and the uninstaller, which may share no function.
!macro DefineBankQuestion prefix
; Is the bank in $Folder the same as the copy? "yes", "no" or "none" in $0, "no" also without a copy. Uses $1 to $4.
Function ${prefix}IsBankOurs
  StrCpy $0 "none"
  IfFileExists "$Folder\${BANK}" 0 answered
  StrCpy $0 "no"
  ClearErrors
  FileOpen $1 "$Folder\${BANK}" r
  FileOpen $2 "$Folder\${BANK_COPY}" r
  IfErrors close
  ${Do}
    ClearErrors
    FileReadByte $1 $3
    ${If} ${Errors}
      StrCpy $3 "end"
    ${EndIf}
    ClearErrors
    FileReadByte $2 $4
    ${If} ${Errors}
      StrCpy $4 "end"
    ${EndIf}
    ${If} $3 != $4
      ${ExitDo}
    ${ElseIf} $3 == "end"
      StrCpy $0 "yes"
      ${ExitDo}
    ${EndIf}
  ${Loop}
  close:
  FileClose $1
  FileClose $2
  answered:
FunctionEnd
!macroend
!insertmacro DefineBankQuestion ""
!insertmacro DefineBankQuestion "un."

Function .onInit
  ${IfNot} ${RunningX64}
    MessageBox MB_ICONSTOP|MB_OK "${PRODUCT} is for 64-bit Windows." /SD IDOK
    Abort
  ${EndIf}
  SetRegView 64
  ; A folder given on the command line goes first, then the last installation's, then the VST folder.
  ${If} $INSTDIR == ""
    ReadRegStr $INSTDIR HKLM "${UNINSTALL_KEY}" "InstallLocation"
  ${EndIf}
  ${If} $INSTDIR == ""
    ReadRegStr $0 HKLM "${VST_KEY}" "${VST_VALUE}"
    ${If} $0 == ""
      StrCpy $0 "$PROGRAMFILES64\VSTPlugins"
    ${EndIf}
    StrCpy $INSTDIR "$0\${PRODUCT}"
  ${EndIf}
  StrCpy $ClapFolder "$COMMONFILES64\CLAP\${PRODUCT}"
FunctionEnd

Function un.onInit
  SetRegView 64
  StrCpy $ClapFolder "$COMMONFILES64\CLAP\${PRODUCT}"
FunctionEnd

Function TellOfTrouble
  MessageBox MB_ICONSTOP|MB_OK "Not everything could be written to $Folder. Is the effect in use? Close your music \
software and run this again." /SD IDOK
  SetErrorLevel 2
  Abort
FunctionEnd

; The copy is replaced last, so that a bank that could not be replaced is still ours the next time. Uses $0 to $4.
Function InstallBank
  Call IsBankOurs
  SetOutPath "$Folder"
  ClearErrors
  ${If} $0 != "no"
    File "/oname=${BANK}" "${STAGE}/${BANK}"
    ${If} ${Errors}
      Call TellOfTrouble
    ${EndIf}
  ${EndIf}
  File "/oname=${BANK_COPY}" "${STAGE}/${BANK}"
  ${If} ${Errors}
    Call TellOfTrouble
  ${EndIf}
FunctionEnd

; Says in the list on the last page that the bank in $Folder is a person's own. Uses $0 to $4.
Function TellOfBank
  Call IsBankOurs
  ${If} $0 == "no"
    SetDetailsView show
    ; Longer lines would be cut off.
    DetailPrint "In $Folder:"
    DetailPrint "Your own bank stays in use (${BANK})."
    DetailPrint "The factory programs are beside it (${BANK_COPY})."
  ${EndIf}
FunctionEnd

!macro InstallInto folder files
  StrCpy $Folder "${folder}"
  ClearErrors
  !include "${files}"
  ${If} ${Errors}
    Call TellOfTrouble
  ${EndIf}
  Call InstallBank
!macroend

!macro RemoveFrom folder files
  StrCpy $Folder "${folder}"
  Call un.IsBankOurs
  ${If} $0 == "yes"
    Delete "$Folder\${BANK}"
  ${EndIf}
  Delete "$Folder\${BANK_COPY}"
  !include "${files}"
!macroend

Function un.TellOfUse
  MessageBox MB_ICONSTOP|MB_OK "The effect is in use. Close your music software and run this again." /SD IDOK
  SetErrorLevel 2
  Abort
FunctionEnd

Section "Effect"
  SetOverwrite on
  !insertmacro InstallInto "$INSTDIR" "${INSTALL}"
  !insertmacro InstallInto "$ClapFolder" "${INSTALL_CLAP}"
  StrCpy $Folder "$INSTDIR"
  ClearErrors
  WriteUninstaller "$INSTDIR\Uninstall.exe"
  ${If} ${Errors}
    Call TellOfTrouble
  ${EndIf}
  WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayName" "${PRODUCT}"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "Publisher" "${VENDOR}"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\Uninstall.exe"'
  WriteRegStr HKLM "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\Uninstall.exe" /S'
  WriteRegDWORD HKLM "${UNINSTALL_KEY}" "NoModify" 1
  WriteRegDWORD HKLM "${UNINSTALL_KEY}" "NoRepair" 1
  Call TellOfBank
  StrCpy $Folder "$ClapFolder"
  Call TellOfBank
SectionEnd

Section "Uninstall"
  ; The libraries first: while one of them is in use nothing else may go.
  InitPluginsDir
  CopyFiles /SILENT "$INSTDIR\${LIBRARY}.dll" "$PLUGINSDIR"
  ClearErrors
  Delete "$INSTDIR\${LIBRARY}.dll"
  ${If} ${Errors}
    Call un.TellOfUse
  ${EndIf}
  Delete "$ClapFolder\${LIBRARY}.clap"
  ${If} ${Errors}
    CopyFiles /SILENT "$PLUGINSDIR\${LIBRARY}.dll" "$INSTDIR"
    Call un.TellOfUse
  ${EndIf}
  !insertmacro RemoveFrom "$INSTDIR" "${REMOVE}"
  !insertmacro RemoveFrom "$ClapFolder" "${REMOVE_CLAP}"
  RMDir "$ClapFolder"
  RMDir "$COMMONFILES64\CLAP"
  Delete "$INSTDIR\Uninstall.exe"
  RMDir "$INSTDIR"
  DeleteRegKey HKLM "${UNINSTALL_KEY}"
  ; The choice of a skin.
  DeleteRegKey HKCU "Software\${VENDOR}\${PRODUCT}"
  DeleteRegKey /ifempty HKCU "Software\${VENDOR}"
SectionEnd
