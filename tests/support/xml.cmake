file(GLOB ZO_XML_TEST_SOURCES CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/xml/*Test.cpp)
zo_test(support_xml_test ${ZO_XML_TEST_SOURCES})
# The parser library is the judge of which names it accepts.
target_link_libraries(support_xml_test PRIVATE EXPAT::EXPAT)
