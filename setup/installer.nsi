; The installer. tools/package compiles it:
;   makensis -DVERSION=... -DFILES=folder -DOUTPUT=file installer.nsi
; Silently: quillo-VERSION-x64-setup.exe /S [/D=folder]; the exit code is that of quillo-setup.
Target amd64-unicode
Unicode true
Name "VORNIX Quillo 6"
OutFile "${OUTPUT}"
InstallDir "$PROGRAMFILES64\Quillo"
RequestExecutionLevel admin
SetCompressor /SOLID lzma
SetDateSave off
ShowInstDetails nevershow

VIProductVersion "${VERSION}.0"
VIAddVersionKey "ProductName" "VORNIX Quillo"
VIAddVersionKey "CompanyName" "Halvard Technologies, Inc."
VIAddVersionKey "FileDescription" "VORNIX Quillo Setup"
VIAddVersionKey "FileVersion" "${VERSION}.0"
VIAddVersionKey "LegalCopyright" ""

!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Quillo"

Page directory
Page instfiles
UninstPage uninstConfirm
UninstPage instfiles

!macro RemoveFiles
  Delete "$INSTDIR\QXDRV06X.dll"
  Delete "$INSTDIR\QXRES06X.dll"
  Delete "$INSTDIR\QXUI06X.dll"
  Delete "$INSTDIR\quillo-client.exe"
  Delete "$INSTDIR\quillo-setup.exe"
  Delete "$INSTDIR\quillo.inf"
  Delete "$INSTDIR\quillo.cat"
  Delete "$INSTDIR\uninstall.exe"
  RMDir "$INSTDIR"
  DeleteRegKey HKLM "${UNINSTALL_KEY}"
!macroend

Section
  SetRegView 64
  SetOutPath "$INSTDIR"
  File "${FILES}/*"
  WriteUninstaller "$INSTDIR\uninstall.exe"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayName" "VORNIX Quillo 6"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "Publisher" "Halvard Technologies, Inc."
  WriteRegStr HKLM "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\uninstall.exe"'
  WriteRegStr HKLM "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
  SetOutPath "$TEMP"  ; so that the folder can be removed
  nsExec::ExecToLog '"$INSTDIR\quillo-setup.exe" install'
  Pop $0
  StrCmp $0 0 done
  !insertmacro RemoveFiles
  IfSilent +2
  MessageBox MB_OK|MB_ICONSTOP "The printer could not be installed (quillo-setup: $0)."
  SetErrorLevel 4
  Abort
done:
SectionEnd

Section Uninstall
  SetRegView 64
  nsExec::ExecToLog '"$INSTDIR\quillo-setup.exe" remove'
  Pop $0
  StrCmp $0 0 remove
  IfSilent +2
  MessageBox MB_OK|MB_ICONSTOP "The printer could not be removed (quillo-setup: $0)."
  SetErrorLevel 4
  Abort
remove:
  !insertmacro RemoveFiles
SectionEnd
