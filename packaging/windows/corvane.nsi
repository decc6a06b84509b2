; SPDX-License-Identifier: GPL-3.0-or-later
; The installer. It needs no administrator: it installs for the user who runs it.
;   makensis -DFOLDER=folder to install -DVERSION=0.1.0 -DOUT=setup.exe corvane.nsi
; Without windows: setup.exe /S /D=C:\folder (without quotes, last), uninstall.exe /S.
; Next to its files it makes a start menu entry, the file types of the program (only where nothing
; else has them), and an entry in the system's list of programs.
Unicode true
Target amd64-unicode
ManifestSupportedOS Win10
ManifestDPIAware true
RequestExecutionLevel user
SetCompressor /SOLID lzma

!include LogicLib.nsh
!include MUI2.nsh

Name "Corvane ${VERSION}"
OutFile "${OUT}"
InstallDir "$LOCALAPPDATA\Programs\Corvane"
InstallDirRegKey HKCU "Software\Corvane" "folder"
BrandingText " "

!define LISTED "Software\Microsoft\Windows\CurrentVersion\Uninstall\Corvane"
!define MUI_ICON "corvane.ico"
!define MUI_UNICON "corvane.ico"
!define MUI_FINISHPAGE_RUN "$INSTDIR\bin\Corvane.exe"
!insertmacro MUI_PAGE_WELCOME
!insertmacro MUI_PAGE_LICENSE "${FOLDER}/LICENSE.txt"
!insertmacro MUI_PAGE_COMPONENTS
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"

; What earlier versions left in the folders that belong to the program.
!macro RemoveFiles
    RMDir /r "$INSTDIR\bin"
    RMDir /r "$INSTDIR\doc"
    RMDir /r "$INSTDIR\lib\fonts"
    RMDir /r "$INSTDIR\licenses"
    RMDir /r "$INSTDIR\plugins"
    RMDir /r "$INSTDIR\share"
    Delete "$INSTDIR\lib\corvane\plugins\tessera.dll"
    Delete "$INSTDIR\LICENSE.txt"
    Delete "$INSTDIR\README.txt"
!macroend

!macro AddType ending text
    WriteRegStr HKCU "Software\Classes\Corvane.${ending}" "" "${text}"
    WriteRegStr HKCU "Software\Classes\Corvane.${ending}\DefaultIcon" "" "$INSTDIR\bin\Corvane.exe,0"
    WriteRegStr HKCU "Software\Classes\Corvane.${ending}\shell\open\command" "" \
        '"$INSTDIR\bin\Corvane.exe" "%1"'
    WriteRegNone HKCU "Software\Classes\.${ending}\OpenWithProgids" "Corvane.${ending}"
    ; Asked for the user first: not every system shows the user's types among all.
    ReadRegStr $0 HKCU "Software\Classes\.${ending}" ""
    ${If} $0 == ""
        ReadRegStr $0 HKCR ".${ending}" ""
    ${EndIf}
    ${If} $0 == ""
        WriteRegStr HKCU "Software\Classes\.${ending}" "" "Corvane.${ending}"
    ${EndIf}
!macroend

!macro RemoveType ending
    DeleteRegKey HKCU "Software\Classes\Corvane.${ending}"
    DeleteRegValue HKCU "Software\Classes\.${ending}\OpenWithProgids" "Corvane.${ending}"
    ReadRegStr $0 HKCU "Software\Classes\.${ending}" ""
    ${If} $0 == "Corvane.${ending}"
        DeleteRegValue HKCU "Software\Classes\.${ending}" ""
    ${EndIf}
    DeleteRegKey /ifempty HKCU "Software\Classes\.${ending}\OpenWithProgids"
    DeleteRegKey /ifempty HKCU "Software\Classes\.${ending}"
!macroend

!macro TellOfTypes
    System::Call 'shell32::SHChangeNotify(i 0x08000000, i 0, p 0, p 0)'
!macroend

Section "Corvane with Tessera"
    SectionIn RO
    !insertmacro RemoveFiles
    SetOutPath "$INSTDIR"
    File /r "${FOLDER}/*"
    WriteUninstaller "$INSTDIR\uninstall.exe"
    WriteRegStr HKCU "Software\Corvane" "folder" "$INSTDIR"
    WriteRegStr HKCU "${LISTED}" "DisplayName" "Corvane with Tessera"
    WriteRegStr HKCU "${LISTED}" "DisplayVersion" "${VERSION}"
    WriteRegStr HKCU "${LISTED}" "DisplayIcon" "$INSTDIR\bin\Corvane.exe"
    WriteRegStr HKCU "${LISTED}" "InstallLocation" "$INSTDIR"
    WriteRegStr HKCU "${LISTED}" "UninstallString" '"$INSTDIR\uninstall.exe"'
    WriteRegStr HKCU "${LISTED}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
    SectionGetSize 0 $0
    WriteRegDWORD HKCU "${LISTED}" "EstimatedSize" $0
    WriteRegDWORD HKCU "${LISTED}" "NoModify" 1
    WriteRegDWORD HKCU "${LISTED}" "NoRepair" 1
SectionEnd

Section "Start menu entry"
    SetOutPath "$PROFILE" ; where the program starts
    CreateShortcut "$SMPROGRAMS\Corvane.lnk" "$INSTDIR\bin\Corvane.exe"
SectionEnd

Section "Open .vmr, .vtc, .voi and .prt files with it"
    !insertmacro AddType "vmr" "Anatomy of Corvane"
    !insertmacro AddType "vtc" "Functional run of Corvane"
    !insertmacro AddType "voi" "Volumes of interest of Corvane"
    !insertmacro AddType "prt" "Protocol of Corvane"
    !insertmacro TellOfTypes
SectionEnd

Section "Uninstall"
    !insertmacro RemoveFiles
    Delete "$INSTDIR\uninstall.exe"
    ; Plugins of others stay, and with them their folder.
    RMDir "$INSTDIR\lib\corvane\plugins"
    RMDir "$INSTDIR\lib\corvane"
    RMDir "$INSTDIR\lib"
    RMDir "$INSTDIR"
    Delete "$SMPROGRAMS\Corvane.lnk"
    !insertmacro RemoveType "vmr"
    !insertmacro RemoveType "vtc"
    !insertmacro RemoveType "voi"
    !insertmacro RemoveType "prt"
    !insertmacro TellOfTypes
    DeleteRegKey HKCU "${LISTED}"
    DeleteRegValue HKCU "Software\Corvane" "folder"
    DeleteRegKey /ifempty HKCU "Software\Corvane"
SectionEnd
