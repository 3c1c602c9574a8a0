#pragma once
#include <exception>
#include <sstream>
#include <string>
#include <utility>

namespace KT_ERROR {

// Builds an exception text by streaming the pieces one after another.
template <class... Pieces>
std::string text(const Pieces&... pieces)
{
    std::ostringstream out;
    (out << ... << pieces);
    return out.str();
}

class kt_exception : public std::exception {
public:
    explicit kt_exception(std::string message) : message(std::move(message)) {}
    const char* what() const noexcept override { return message.c_str(); }

private:
    std::string message;
};

#define KT_ERROR_CLASS(name, base)          \
    class name : public base {              \
    public:                                 \
        using base::base;                   \
    }

KT_ERROR_CLASS(internal_error, kt_exception);
KT_ERROR_CLASS(format_error, kt_exception);
KT_ERROR_CLASS(internal_autocode_error, format_error);
KT_ERROR_CLASS(parse_time_error, format_error);
KT_ERROR_CLASS(bad_escape_sequence, parse_time_error);
KT_ERROR_CLASS(drawable_illegal_parameter, parse_time_error);
KT_ERROR_CLASS(render_time_error, format_error);
KT_ERROR_CLASS(illegal_content, render_time_error);
KT_ERROR_CLASS(bad_date_format, render_time_error);
KT_ERROR_CLASS(bad_content_sequence, render_time_error);
KT_ERROR_CLASS(drawable_off_format, render_time_error);
KT_ERROR_CLASS(not_a_number, render_time_error);
KT_ERROR_CLASS(resource_error, format_error);
KT_ERROR_CLASS(disk_is_full, resource_error);
KT_ERROR_CLASS(SFS_Exception, resource_error);
KT_ERROR_CLASS(SFS_FSCannotBeCreatedException, SFS_Exception);
KT_ERROR_CLASS(SFS_FSCannotBeRestoredException, SFS_Exception);
KT_ERROR_CLASS(SFS_FileNotFoundException, SFS_Exception);
KT_ERROR_CLASS(SFS_FileSystemFullException, SFS_Exception);

#undef KT_ERROR_CLASS

}  // namespace KT_ERROR
