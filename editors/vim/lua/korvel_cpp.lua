-- Shows, in a window of its own, the C++ that the program of the buffer becomes.
return function()
    local asked = { command = 'korvel.showCpp', arguments = { vim.uri_from_bufnr(0) } }
    vim.lsp.buf_request(0, 'workspace/executeCommand', asked, function(refused, text)
        if refused then return vim.notify(refused.message, vim.log.levels.ERROR) end
        vim.cmd('vnew')
        vim.api.nvim_buf_set_lines(0, 0, -1, false, vim.split(text, '\n'))
        vim.bo.buftype, vim.bo.bufhidden, vim.bo.filetype, vim.bo.modifiable = 'nofile', 'wipe', 'cpp', false
    end)
end
