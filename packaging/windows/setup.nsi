; The set-up program of the Windows edition. What things are called comes from the program's own source (product.nsh).

Unicode false  ; Windows 95 runs no other
ManifestSupportedOS none
RequestExecutionLevel none
SetCompressor zlib
Name "${TITLE}"
OutFile "${OUT}"
Icon "${ICON}"
UninstallIcon "${ICON}"
BrandingText " "
InstallDir "$PROGRAMFILES\${TITLE}"
InstallDirRegKey HKLM "${UNINSTALL_KEY}" "InstallLocation"
ShowInstDetails nevershow
SilentUnInstall silent  ; the program has asked already

; The program starts it from here, without a word on its command line, and ends.
!define UNINSTALL_FOLDER "$WINDIR\uninstall\brightlock suite"

!if ${LANGUAGE} == de
    LoadLanguageFile "${NSISDIR}/Contrib/Language files/German.nlf"
    !define REMOVAL_ENTRY "${TITLE} entfernen"
    !define REFUSED "${TITLE} kann nicht installiert werden: Sie brauchen Administratorrechte, und das Programm darf nicht laufen."
!else
    LoadLanguageFile "${NSISDIR}/Contrib/Language files/English.nlf"
    !define REMOVAL_ENTRY "Uninstall ${TITLE}"
    !define REFUSED "${TITLE} cannot be installed: you need administrator privileges, and the program must not be running."
!endif

Page directory
Page instfiles

Section
    SetShellVarContext all
    SetOutPath "$INSTDIR"
    ClearErrors
    File "${PROGRAMS}/${PROGRAM_FILE}"
    File "${PROGRAMS}/${HIVE_TOOL_FILE}"
    File "${PROGRAMS}/${HELP_FILE}"
    File "${PROGRAMS}/readme.txt"
    IfErrors refused

    ; Nothing else makes the product's key, and the program writes no value without it.
    WriteRegStr HKLM "${KEY}" "" ""
    DeleteRegValue HKLM "${KEY}" ""
    WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayName" "${TITLE}"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\${PROGRAM_FILE}" /uninstall'
    WriteRegStr HKLM "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
    IfErrors refused

    CreateDirectory "$SMPROGRAMS\${TITLE}"
    Delete "$SMPROGRAMS\${TITLE}\*.lnk"  ; those of the other language
    CreateShortCut "$SMPROGRAMS\${TITLE}\${TITLE}.lnk" "$INSTDIR\${PROGRAM_FILE}"
    CreateShortCut "$SMPROGRAMS\${TITLE}\${REMOVAL_ENTRY}.lnk" "$INSTDIR\${PROGRAM_FILE}" "/uninstall"

    CreateDirectory "$WINDIR\uninstall"
    CreateDirectory "${UNINSTALL_FOLDER}"
    WriteUninstaller "${UNINSTALL_FOLDER}\setup.exe"
    IfErrors refused
    Goto done
refused:
    MessageBox MB_OK|MB_ICONSTOP "${REFUSED}" /SD IDOK
    SetErrorLevel 2
    Quit
done:
SectionEnd

Section "Uninstall"
    SetShellVarContext all
    ReadRegStr $INSTDIR HKLM "${UNINSTALL_KEY}" "InstallLocation"
    StrCmp $INSTDIR "" registry

    ; The program that started this is ending still.
    StrCpy $0 20
again:
    ClearErrors
    Delete "$INSTDIR\${PROGRAM_FILE}"
    IfErrors 0 gone
    Sleep 250
    IntOp $0 $0 - 1
    StrCmp $0 0 gone again
gone:
    Delete "$INSTDIR\${HIVE_TOOL_FILE}"
    Delete "$INSTDIR\${HELP_FILE}"
    Delete "$INSTDIR\readme.txt"
    Delete "$INSTDIR\brlckup.exe"  ; what an update has fetched
    RMDir "$INSTDIR"  ; a folder in which somebody keeps restriction files stays

registry:
    Delete "$SMPROGRAMS\${TITLE}\*.lnk"
    RMDir "$SMPROGRAMS\${TITLE}"
    DeleteRegKey HKLM "${UNINSTALL_KEY}"
    DeleteRegKey HKLM "${KEY}"
    DeleteRegKey /ifempty HKLM "${MAKER_KEY}"
    Delete "${UNINSTALL_FOLDER}\setup.exe"
    RMDir "${UNINSTALL_FOLDER}"
    RMDir "$WINDIR\uninstall"
SectionEnd
