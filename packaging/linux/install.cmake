# What `cmake --install` puts where; a target is installed as the program.
include(GNUInstallDirs)

set(TARVEL_SCREENSHOTS_ADDRESS "https://tarvel.example/screenshots" CACHE STRING
    "Where software centres fetch the pictures in docs/")

set(linux ${PROJECT_SOURCE_DIR}/packaging/linux)
set(made ${PROJECT_BINARY_DIR}/packaging)
foreach(file example.tarvel.cd_ripper.metainfo.xml man/tarvel-cd-ripper.1 man/ja/tarvel-cd-ripper.1)
    configure_file(${linux}/${file}.in ${made}/${file} @ONLY)
endforeach()

install(TARGETS ${target} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(TARGETS tarvel_media_module LIBRARY DESTINATION ${TARVEL_MODULE_FOLDER})
install(FILES ${linux}/tarvel-cd-ripper.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${made}/example.tarvel.cd_ripper.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES ${made}/man/tarvel-cd-ripper.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${made}/man/ja/tarvel-cd-ripper.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/ja/man1)
install(DIRECTORY ${linux}/hicolor DESTINATION ${CMAKE_INSTALL_DATADIR}/icons)
install(FILES ${PROJECT_SOURCE_DIR}/packaging/icon.svg RENAME tarvel-cd-ripper.svg
    DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
