// SPDX-License-Identifier: MIT
#include "decoders/jpeg/JpegSource.h"

#include <algorithm>
#include <utility>

JpegSource::JpegSource(jpeg_decompress_struct& decoder) : decoder_(decoder)
{
    manager_.init_source = [](j_decompress_ptr) {};
    manager_.fill_input_buffer = Fill;
    manager_.skip_input_data = Skip;
    manager_.resync_to_restart = jpeg_resync_to_restart;
    manager_.term_source = [](j_decompress_ptr) {};
    decoder.src = &manager_;
    decoder.client_data = this;
}

size_t JpegSource::ReadBlock(VornPlugin& object)
{
    const std::span bytes = backlog_.ReadBlock(object, manager_.bytes_in_buffer);
    manager_.next_input_byte = bytes.data();
    return bytes.size() - std::exchange(manager_.bytes_in_buffer, bytes.size());
}

void JpegSource::StartOver(VornPlugin& object)
{
    backlog_.StartOver(object);
    manager_.bytes_in_buffer = 0;
    wasTooShort_ = true; // and the first scan, which ended with a mark, has all its rows
}

boolean JpegSource::Fill(j_decompress_ptr decoder)
{
    static constexpr UInt8 kEndMark[] = {0xFF, JPEG_EOI};
    auto& source = *static_cast<JpegSource*>(decoder->client_data);
    if (!source.HasAll())
        return FALSE;
    if (!source.wasTooShort_ && decoder->input_scan_number <= 1) {
        const auto rowHeight = static_cast<JDIMENSION>(decoder->max_v_samp_factor * DCTSIZE);
        source.rowsBeforeEnd_ = (decoder->input_iMCU_row + 1) * rowHeight;
    }
    source.wasTooShort_ = true;
    source.manager_.next_input_byte = kEndMark;
    source.manager_.bytes_in_buffer = sizeof kEndMark;
    return TRUE;
}

void JpegSource::Skip(j_decompress_ptr decoder, long count)
{
    if (count <= 0)
        return;
    auto& source = *static_cast<JpegSource*>(decoder->client_data);
    const size_t here = std::min(static_cast<size_t>(count), source.manager_.bytes_in_buffer);
    source.manager_.next_input_byte += here;
    source.manager_.bytes_in_buffer -= here;
    source.backlog_.SkipAhead(static_cast<size_t>(count) - here);
}
